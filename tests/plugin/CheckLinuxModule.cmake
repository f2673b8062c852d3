# cmake -DMODULE=Velmoran.so -P CheckLinuxModule.cmake
# Fails unless the shared object defines exactly ModuleEntry, ModuleExit and GetPluginFactory as
# dynamic symbols.
cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND nm -D --defined-only "${MODULE}" OUTPUT_VARIABLE dump RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "nm could not read ${MODULE}")
endif()
string(REGEX MATCHALL "[0-9a-f]+ [TtWwDdBbRr] [^\n]+" lines "${dump}")
set(exports "")
foreach(line IN LISTS lines)
    string(REGEX REPLACE "^[0-9a-f]+ . " "" name "${line}")
    list(APPEND exports "${name}")
endforeach()
list(SORT exports)
if(NOT exports STREQUAL "GetPluginFactory;ModuleEntry;ModuleExit")
    message(FATAL_ERROR "unexpected exports: '${exports}'")
endif()
