# What every target of the tree is compiled with, and the functions that make a room of the house a library.

function(korvex_compile_options target)
  target_include_directories(${target} PRIVATE "${CMAKE_SOURCE_DIR}")
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wformat=2 -Wcast-qual -Wold-style-cast
    -Werror
    # GCC 12 takes a text put before a std::string for an overlapping copy (its bug 105651).
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
    # The same sources give the same program wherever they lie.
    "-ffile-prefix-map=${CMAKE_SOURCE_DIR}/=")
  if(WIN32)
    # NOGDI keeps wingdi.h from renaming the COM method GetObject.
    target_compile_definitions(${target} PRIVATE WIN32_LEAN_AND_MEAN NOGDI NOMINMAX UNICODE _UNICODE
      _WIN32_WINNT=0x0601 __USE_MINGW_ANSI_STDIO=1)
  else()
    # The SDK's COM interfaces have no virtual destructor, and no class may derive from them under this warning.
    target_compile_options(${target} PRIVATE -Wnon-virtual-dtor)
  endif()
endfunction()

# Headers that most files of a target read anyway, read once for all of them. The system's own are large on Windows. Files include
# what they use all the same: script/lint and the release build read each without this. (Optimising, GCC 12 no longer knows then
# which warnings come from the library's own headers.)
set(korvex_common_headers <algorithm> <cstdint> <functional> <map> <memory> <optional> <span> <string> <string_view> <variant> <vector>)
if(WIN32)
  list(APPEND korvex_common_headers "${CMAKE_SOURCE_DIR}/platform/wbem.h")
endif()

# A room: every source of one directory as one static library.
function(korvex_room directory target)
  cmake_parse_arguments(ROOM "" "" "USES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/${directory}/*.cpp")
  add_library(${target} STATIC ${sources})
  set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX)
  korvex_compile_options(${target})
  target_precompile_headers(${target} REUSE_FROM korvex_platform)
  target_link_libraries(${target} PUBLIC ${ROOM_USES})
endfunction()

# The platform: the operating system itself on Windows, its POSIX side elsewhere.
function(korvex_platform_room)
  if(WIN32)
    file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/platform/*.cpp" "${CMAKE_SOURCE_DIR}/platform/windows/*.cpp")
  else()
    file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/platform/*.cpp" "${CMAKE_SOURCE_DIR}/platform/posix/*.cpp")
  endif()
  add_library(korvex_platform STATIC ${sources})
  set_target_properties(korvex_platform PROPERTIES LINKER_LANGUAGE CXX)
  korvex_compile_options(korvex_platform)
  target_precompile_headers(korvex_platform PRIVATE ${korvex_common_headers})
  if(WIN32)
    target_link_libraries(korvex_platform PUBLIC ole32 oleaut32 wbemuuid uuid advapi32 cfgmgr32)
  else()
    find_package(Threads REQUIRED)
    target_link_libraries(korvex_platform PUBLIC Threads::Threads)
  endif()
endfunction()

# The simulated host, which gives the POSIX platform its machine.
function(korvex_simulated_host)
  set(side posix)
  if(WIN32)
    set(side windows)
  endif()
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/simhost/*.cpp" "${CMAKE_SOURCE_DIR}/simhost/${side}/*.cpp")
  add_library(simhost STATIC ${sources})
  set_target_properties(simhost PROPERTIES LINKER_LANGUAGE CXX)
  korvex_compile_options(simhost)
  target_precompile_headers(simhost PRIVATE ${korvex_common_headers})
  target_link_libraries(simhost PUBLIC korvex_platform)
  if(WIN32)
    # Of the build machine's headers the cross compiler may see this library's alone.
    file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/include")
    file(CREATE_LINK /usr/include/nlohmann "${CMAKE_BINARY_DIR}/include/nlohmann" SYMBOLIC)
    target_include_directories(simhost SYSTEM PRIVATE "${CMAKE_BINARY_DIR}/include")
    # It is not delivered there, and sooner compiled so.
    target_compile_options(simhost PRIVATE -O1)
  else()
    # These checks make its compilation take half as long again; the address sanitizer meets most of what they would.
    target_compile_options(simhost PRIVATE -fno-sanitize=null,vptr,alignment,object-size)
    find_package(nlohmann_json REQUIRED)
    target_link_libraries(simhost PRIVATE nlohmann_json::nlohmann_json)
  endif()
endfunction()

# The simulated host as an in-process COM server, which stands in for WMI on Windows.
function(korvex_simulated_server)
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/simhost/server/*.cpp")
  add_library(simhost_server SHARED ${sources})
  set_target_properties(simhost_server PROPERTIES PREFIX "" OUTPUT_NAME simhost)
  korvex_compile_options(simhost_server)
  target_link_options(simhost_server PRIVATE -static)
  target_link_libraries(simhost_server PRIVATE simhost)
endfunction()

# What korvex.exe tells of itself: its version, and that it runs with the rights of whoever starts it.
function(korvex_windows_resources target)
  enable_language(RC)
  configure_file("${CMAKE_SOURCE_DIR}/app/resources/korvex.rc.in" "${CMAKE_BINARY_DIR}/korvex.rc" @ONLY)
  set_property(SOURCE "${CMAKE_BINARY_DIR}/korvex.rc" PROPERTY
    OBJECT_DEPENDS "${CMAKE_SOURCE_DIR}/app/resources/korvex.manifest")
  target_sources(${target} PRIVATE "${CMAKE_BINARY_DIR}/korvex.rc")
endfunction()

# Links the machine that the platform runs on: the simulated host off Windows, nothing on it.
function(korvex_link_machine target)
  if(NOT WIN32)
    # The platform calls the machine and the machine the platform, so the two are searched together.
    target_link_libraries(${target} PRIVATE -Wl,--start-group simhost korvex_platform -Wl,--end-group)
  endif()
endfunction()

# The program that writes large host descriptions.
function(korvex_makehost)
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/simhost/makehost/*.cpp")
  add_executable(makehost ${sources})
  korvex_compile_options(makehost)
  # GCC 12 under the sanitizers takes the parts of an initializer list for unset.
  target_compile_options(makehost PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  korvex_link_machine(makehost)
endfunction()
