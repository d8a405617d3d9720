#pragma once

// The index that the application would have of a collection, made from its files.

#include <filesystem>
#include <string>

namespace lk::test {

// The application's folder under the user's home, and its store of a collection in it.
std::filesystem::path applicationSupport(const std::filesystem::path& home);
std::filesystem::path applicationStore(const std::filesystem::path& home,
                                       const std::string& collectionID);

// Makes the application know the collection, with a store of what the files hold now. A store must
// not be there yet. Throws FileError and LKStoreError.
void plantApplication(const std::filesystem::path& home, const std::filesystem::path& collection,
                      const std::string& collectionID);

}  // namespace lk::test
