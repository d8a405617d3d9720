# Language, warnings and sanitizers, the same for every target.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_VERIFY_INTERFACE_HEADER_SETS ON)

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(LK_WERROR)
  add_compile_options(-Werror)
endif()
# clang before 17 has the coroutines of C++20 but does not say so, and the headers go by what it says.
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 17)
  add_compile_definitions(__cpp_impl_coroutine=201902L ASIO_HAS_CO_AWAIT=1
                          ASIO_HAS_STD_COROUTINE=1)
  add_compile_options(-Wno-builtin-macro-redefined)
endif()
if(LK_SANITIZE)
  add_compile_options(-fsanitize=${LK_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${LK_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    add_link_options(-fuse-ld=lld)  # dozens of large programs, each in a second instead of ten
  endif()
endif()
