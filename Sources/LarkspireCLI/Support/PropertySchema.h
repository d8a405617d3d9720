#pragma once

// The property schema as commands use it.

#include <map>
#include <string>
#include <vector>

#include "LKCore/Properties/LKPropertyDefinition.h"
#include "LarkspireCLI/Support/GlobalOptions.h"

namespace lk {

// The schema of the collection in use. What of its file cannot be read is told on standard error,
// unless the run is quiet.
std::vector<LKPropertyDefinition> readPropertySchema(const GlobalOptions& options);

// The properties that "key=value" arguments name, later ones winning, with what is to be written:
// each value checked against the schema and in its options' spelling. Warnings, also of the
// required ones among the `removed`, go to standard error, unless the run is quiet. Throws CLIError
// as PropertyArgument::parse and PropertyValidator::validate do.
std::map<std::string, std::string> checkedProperties(const std::vector<std::string>& arguments,
                                                     const GlobalOptions& options,
                                                     const std::vector<std::string>& removed = {});

// The same with the values as they are given, whatever the schema says.
std::map<std::string, std::string> uncheckedProperties(const std::vector<std::string>& arguments);

}  // namespace lk
