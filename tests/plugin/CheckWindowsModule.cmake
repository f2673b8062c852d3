# cmake -DMODULE=Velmoran.vst3 -DOBJDUMP=x86_64-w64-mingw32-objdump -P CheckWindowsModule.cmake
# Fails unless the DLL exports exactly InitDll, ExitDll and GetPluginFactory and imports only
# DLLs that are part of Windows.
cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND "${OBJDUMP}" -p "${MODULE}" OUTPUT_VARIABLE dump RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "${OBJDUMP} could not read ${MODULE}")
endif()

# Export names: the lines after "[Ordinal/Name Pointer] Table" look like "[   0] ExitDll".
string(REGEX MATCH "\\[Ordinal/Name Pointer\\] Table[^\n]*\n(.*)" table "${dump}")
set(exports "")
if(table)
    string(REGEX MATCHALL "\n[\t ]*\\[ *[0-9]+\\] [A-Za-z_][A-Za-z0-9_@]*" lines "\n${CMAKE_MATCH_1}")
    foreach(line IN LISTS lines)
        string(REGEX REPLACE ".*\\] " "" name "${line}")
        list(APPEND exports "${name}")
    endforeach()
endif()
list(SORT exports)
if(NOT exports STREQUAL "ExitDll;GetPluginFactory;InitDll")
    message(FATAL_ERROR "unexpected exports: '${exports}'")
endif()

set(system_dlls advapi32 comctl32 comdlg32 gdi32 kernel32 msvcrt ole32 oleaut32 opengl32 shell32 shlwapi user32
    uxtheme winmm ws2_32 version dwmapi imm32 ucrtbase)
string(REGEX MATCHALL "DLL Name: [^\n]+" imports "${dump}")
foreach(line IN LISTS imports)
    string(REGEX REPLACE "DLL Name: " "" dll "${line}")
    string(STRIP "${dll}" dll)
    string(TOLOWER "${dll}" dll)
    string(REGEX REPLACE "\\.dll$" "" base "${dll}")
    if(NOT base IN_LIST system_dlls AND NOT base MATCHES "^api-ms-win-")
        message(FATAL_ERROR "the module needs ${dll}, which Windows does not ship")
    endif()
    message(STATUS "imports ${dll}")
endforeach()
message(STATUS "exports: ${exports}")
