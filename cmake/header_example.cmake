# Writes the example program that a public header carries in its opening
# comment, between the lines " * ---- example ----" and " * ---- end ----",
# to a C file, so that the build compiles it and the tests run it.
#   cmake -DHEADER=<header> -DOUTPUT=<file.c> -P header_example.cmake
# The text is handled as one string, never as a list, so that the code's
# semicolons stay where they are.
file(READ ${HEADER} text)
set(begin_mark "\n * ---- example ----\n")
set(end_mark "\n * ---- end ----\n")
string(FIND "${text}" "${begin_mark}" begin)
string(FIND "${text}" "${end_mark}" end)
if(begin EQUAL -1 OR end EQUAL -1 OR end LESS begin)
  message(FATAL_ERROR "${HEADER} carries no example")
endif()
string(LENGTH "${begin_mark}" mark_length)
math(EXPR start "${begin} + ${mark_length} - 1")
math(EXPR length "${end} - ${start} + 1")
string(SUBSTRING "${text}" ${start} ${length} code)
string(REGEX REPLACE "\n \\* ?" "\n" code "${code}")
string(SUBSTRING "${code}" 1 -1 code)
file(WRITE ${OUTPUT} "${code}")
