# The VST 3 SDK sources as Debian's juce-modules-source-data ships them (interfaces, base and
# most of public.sdk), built as one static library: vst3sdk.
set(VST3_SDK_DIR "/usr/share/juce/modules/juce_audio_processors/format_types/VST3_SDK"
    CACHE PATH "Root of the VST 3 SDK sources")

if(NOT EXISTS "${VST3_SDK_DIR}/pluginterfaces/base/funknown.h")
    message(FATAL_ERROR
        "The VST 3 SDK was not found at ${VST3_SDK_DIR}.\n"
        "Install the Debian package 'juce-modules-source-data' (or run scripts/setup.sh), "
        "or point VST3_SDK_DIR at another copy of the same sources.")
endif()

set(VST3_SDK_SOURCES
    base/source/baseiids.cpp
    base/source/fbuffer.cpp
    base/source/fdebug.cpp
    base/source/fobject.cpp
    base/source/fstreamer.cpp
    base/source/fstring.cpp
    base/source/updatehandler.cpp
    base/thread/source/flock.cpp
    pluginterfaces/base/conststringtable.cpp
    pluginterfaces/base/coreiids.cpp
    pluginterfaces/base/funknown.cpp
    pluginterfaces/base/ustring.cpp
    public.sdk/source/common/memorystream.cpp
    public.sdk/source/common/pluginview.cpp
    public.sdk/source/vst/hosting/hostclasses.cpp
    public.sdk/source/vst/hosting/pluginterfacesupport.cpp
    public.sdk/source/vst/vstbus.cpp
    public.sdk/source/vst/vstcomponent.cpp
    public.sdk/source/vst/vstcomponentbase.cpp
    public.sdk/source/vst/vsteditcontroller.cpp
    public.sdk/source/vst/vstinitiids.cpp
    public.sdk/source/vst/vstparameters.cpp
    public.sdk/source/vst/vstpresetfile.cpp
)
list(TRANSFORM VST3_SDK_SOURCES PREPEND "${VST3_SDK_DIR}/")

add_library(vst3sdk STATIC ${VST3_SDK_SOURCES})
target_include_directories(vst3sdk SYSTEM PUBLIC "${VST3_SDK_DIR}")
target_compile_definitions(vst3sdk PUBLIC $<IF:$<CONFIG:Debug>,DEVELOPMENT=1,RELEASE=1>)
# Third-party code: built as shipped, without the project's warning set.
target_compile_options(vst3sdk PRIVATE -w)
set_target_properties(vst3sdk PROPERTIES POSITION_INDEPENDENT_CODE ON)
if(WIN32)
    target_link_libraries(vst3sdk PUBLIC ole32)
else()
    # On Linux the SDK's reference count is added atomically but read back plainly, so two threads
    # releasing one object at once can both see the same count. Its std-atomic variant is whole.
    target_compile_definitions(vst3sdk PRIVATE SMTG_USE_STDATOMIC_H=1)
    target_include_directories(vst3sdk BEFORE PRIVATE "${PROJECT_SOURCE_DIR}/cmake/sdk-shims")
    find_package(Threads REQUIRED)
    target_link_libraries(vst3sdk PUBLIC Threads::Threads)
endif()
