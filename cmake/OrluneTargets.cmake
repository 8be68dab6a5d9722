# Flags of our own code. Third-party headers are system headers, to which the warnings do not apply.
add_library(orlune_flags INTERFACE)
target_compile_options(orlune_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow
    # The same code model everywhere, so that all targets share the precompiled headers.
    -fPIC -pthread
    $<$<BOOL:${ORLUNE_WERROR}>:-Werror>
    # GCC 16 reports the frames of Asio's coroutines, which have their own allocator, as a mismatch.
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_GREATER_EQUAL:$<CXX_COMPILER_VERSION>,16>>:-Wno-mismatched-new-delete>
    # Clang marks [[no_unique_address]]-like attributes of the standard library of GCC 12 as unknown.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-unknown-attributes>)
target_compile_definitions(orlune_flags INTERFACE
    # Asio, Beast and JSON are compiled once (cmake/asio.cpp), not in every file.
    BOOST_ASIO_SEPARATE_COMPILATION BOOST_BEAST_SEPARATE_COMPILATION
    BOOST_ASIO_NO_DEPRECATED QT_NO_KEYWORDS
    ORLUNE_VERSION="${PROJECT_VERSION}")
target_include_directories(orlune_flags INTERFACE ${PROJECT_SOURCE_DIR}/src)
if(ORLUNE_SANITIZE)
    target_compile_options(orlune_flags INTERFACE
        -fsanitize=${ORLUNE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(orlune_flags INTERFACE -fsanitize=${ORLUNE_SANITIZE})
endif()

if(ORLUNE_FUZZ)
    # Coverage in all our code guides the fuzzers.
    target_compile_options(orlune_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

if(ORLUNE_HARDEN)
    include(CheckPIESupported)
    check_pie_supported()
    target_compile_options(orlune_flags INTERFACE
        -fstack-protector-strong -fstack-clash-protection -fcf-protection=full
        -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
    target_compile_definitions(orlune_flags INTERFACE _GLIBCXX_ASSERTIONS)
    target_link_options(orlune_flags INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack)
endif()

# The heavy headers that most files include, compiled once for libraries and once for tests. Every file still
# includes what it uses: -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON builds without them.
function(orlune_precompiled_headers name)
    cmake_parse_arguments(ARG "" "" "HEADERS;LINK" ${ARGN})
    add_library(${name} STATIC ${PROJECT_SOURCE_DIR}/cmake/precompiled.cpp)
    target_link_libraries(${name} PRIVATE orlune_flags Boost::boost ${ARG_LINK})
    target_precompile_headers(${name} PRIVATE ${ARG_HEADERS})
endfunction()

set(heavy_headers
    <boost/asio/any_io_executor.hpp> <boost/asio/awaitable.hpp> <boost/asio/co_spawn.hpp>
    <boost/asio/post.hpp> <boost/asio/strand.hpp> <boost/asio/use_awaitable.hpp>
    <functional> <memory> <optional> <string> <vector>)
orlune_precompiled_headers(orlune_pch HEADERS ${heavy_headers})
orlune_precompiled_headers(orlune_views_pch
    HEADERS ${heavy_headers} <QBoxLayout> <QPainter> <QPainterPath> <QWidget>
    LINK Qt6::Widgets)

# The separately compiled parts of Asio and Beast.
add_library(orlune_asio STATIC ${PROJECT_SOURCE_DIR}/cmake/asio.cpp)
target_link_libraries(orlune_asio PUBLIC orlune_flags Boost::boost Threads::Threads PRIVATE OpenSSL::SSL OpenSSL::Crypto)

# Which of our libraries each folder may link, from src/floors.txt.
file(STRINGS ${PROJECT_SOURCE_DIR}/src/floors.txt floor_lines REGEX "^[a-z]")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/floors.txt)
foreach(line ${floor_lines})
    string(REGEX MATCH "^([a-z0-9/]+):(.*)$" matched "${line}")
    set(folder ${CMAKE_MATCH_1})
    separate_arguments(below UNIX_COMMAND "${CMAKE_MATCH_2}")
    list(TRANSFORM below PREPEND "orlune_")
    list(TRANSFORM below REPLACE "platform/linux/" "linux/")
    list(TRANSFORM below REPLACE "/" "_")
    set(floors_below_${folder} "${below}")
endforeach()

# orlune_library(<name> [VIEWS] SOURCES <files...> [PUBLIC <targets...>] [PRIVATE <targets...>])
# Defines the library of the calling folder. It links our libraries that src/floors.txt names for the folder;
# PUBLIC and PRIVATE are external libraries. VIEWS: Qt's widgets are precompiled too.
function(orlune_library name)
    cmake_parse_arguments(ARG "VIEWS" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_link_libraries(${name} PUBLIC orlune_flags Boost::boost ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
    cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR BASE_DIRECTORY ${PROJECT_SOURCE_DIR}/src OUTPUT_VARIABLE folder)
    if(DEFINED floors_below_${folder})
        target_link_libraries(${name} PRIVATE ${floors_below_${folder}})
        set_property(TARGET ${name} PROPERTY ORLUNE_FLOORS_BELOW "${floors_below_${folder}}")
        cmake_language(EVAL CODE "cmake_language(DEFER DIRECTORY [[${PROJECT_SOURCE_DIR}]] CALL orlune_check_links ${name})")
    elseif(folder MATCHES "^[a-z]")
        message(FATAL_ERROR "src/floors.txt does not name src/${folder}")
    endif()
    if(ARG_VIEWS)
        target_precompile_headers(${name} REUSE_FROM orlune_views_pch)
    else()
        target_precompile_headers(${name} REUSE_FROM orlune_pch)
    endif()
endfunction()

# Configuration fails when a library links one of ours that src/floors.txt does not allow.
function(orlune_check_links name)
    get_target_property(links ${name} LINK_LIBRARIES)
    get_target_property(below ${name} ORLUNE_FLOORS_BELOW)
    foreach(link ${links})
        if(link MATCHES "^orlune_" AND NOT link MATCHES "^orlune_(asio|flags|wayland_protocols|.*pch)$" AND NOT link IN_LIST below)
            message(FATAL_ERROR "${name} links ${link}, which src/floors.txt does not allow")
        endif()
    endforeach()
endfunction()

# orlune_wayland_protocols(<name> <XML files...>)
# A library of protocols as C, written by wayland-scanner, for the client's side. Headers are called
# <file>-client-protocol.h.
function(orlune_wayland_protocols name)
    find_program(WAYLAND_SCANNER wayland-scanner REQUIRED)
    set(sources "")
    foreach(xml IN LISTS ARGN)
        cmake_path(GET xml STEM protocol)
        set(header ${CMAKE_CURRENT_BINARY_DIR}/${protocol}-client-protocol.h)
        set(code ${CMAKE_CURRENT_BINARY_DIR}/${protocol}-protocol.c)
        add_custom_command(OUTPUT ${header} DEPENDS ${xml} VERBATIM
            COMMAND ${WAYLAND_SCANNER} client-header ${xml} ${header})
        add_custom_command(OUTPUT ${code} DEPENDS ${xml} VERBATIM
            COMMAND ${WAYLAND_SCANNER} private-code ${xml} ${code})
        list(APPEND sources ${header} ${code})
    endforeach()
    add_library(${name} STATIC ${sources})
    set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    target_include_directories(${name} SYSTEM INTERFACE ${CMAKE_CURRENT_BINARY_DIR})
    target_link_libraries(${name} PUBLIC PkgConfig::Wayland)
endfunction()

# orlune_test(<name> [VIEWS] SOURCES <files...> LINK <targets...>)
# VIEWS: with an application that draws in memory.
function(orlune_test name)
    cmake_parse_arguments(ARG "VIEWS" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE orlune_flags ${ARG_LINK} GTest::gmock Boost::boost)
    if(ARG_VIEWS)
        target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/ViewMain.cpp)
        target_link_libraries(${name} PRIVATE GTest::gtest Qt6::Test Qt6::Widgets)
    else()
        target_link_libraries(${name} PRIVATE GTest::gtest_main)
    endif()
    target_precompile_headers(${name} REUSE_FROM orlune_test_pch)
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES PROPERTIES TIMEOUT 120)
endfunction()
