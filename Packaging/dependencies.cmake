# Read by cpack: which packages bring the libraries of the tool and of its parts. The tool and the
# small archive part are what every installation has, so theirs are dependencies; the libraries of
# the other parts, some tens of megabytes, are recommended, and the tool does without them.
file(WRITE ${CPACK_LK_SCRATCH}/debian/control "Source: larkspire\n\nPackage: larkspire\nArchitecture: any\n")
file(GLOB recommended ${CPACK_LK_PARTS}/*.so)
set(needed ${CPACK_LK_PROGRAM})
if(EXISTS ${CPACK_LK_PARTS}/archive.so)
  list(APPEND needed ${CPACK_LK_PARTS}/archive.so)
  list(REMOVE_ITEM recommended ${CPACK_LK_PARTS}/archive.so)
endif()
list(TRANSFORM needed PREPEND -e)
list(TRANSFORM recommended PREPEND -e)
execute_process(
  COMMAND dpkg-shlibdeps -O -dDepends ${needed} -dRecommends ${recommended}
  WORKING_DIRECTORY ${CPACK_LK_SCRATCH}
  OUTPUT_VARIABLE found
  ERROR_VARIABLE complaint
  RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "dpkg-shlibdeps: ${complaint}")
endif()
if(found MATCHES "shlibs:Depends=([^\n]*)")
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "${CMAKE_MATCH_1}")
endif()
if(found MATCHES "shlibs:Recommends=([^\n]*)")
  string(PREPEND CPACK_DEBIAN_PACKAGE_RECOMMENDS "${CMAKE_MATCH_1}, ")
endif()
