# Reads the releases from CHANGELOG.md and converts them for metainfo and package. Headings are
# "## VERSION - YYYY-MM-DD", the newest first. An unreleased version has "unreleased" instead of a date and
# gets the date of the build (SOURCE_DATE_EPOCH if set).

file(READ ${PROJECT_SOURCE_DIR}/CHANGELOG.md changelog)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
# These characters are special in CMake's lists.
string(REPLACE ";" "," changelog "${changelog}")
string(REGEX REPLACE "[][]" "" changelog "${changelog}")

string(REGEX MATCHALL "\n## [^\n]+" headings "${changelog}")
string(TIMESTAMP today "%Y-%m-%d" UTC)
set(releases "")
foreach(heading IN LISTS headings)
    if(NOT heading MATCHES "^\n## ([0-9.]+) - (unreleased|[0-9]+-[0-9]+-[0-9]+)$")
        message(FATAL_ERROR "CHANGELOG.md: this heading is not \"## VERSION - DATE\": ${heading}")
    endif()
    set(version ${CMAKE_MATCH_1})
    set(date ${CMAKE_MATCH_2})
    set(type stable)
    if(date STREQUAL "unreleased")
        set(date ${today})
        set(type development)
    endif()

    # The section from this heading to the next: each point with its continuation lines.
    string(FIND "${changelog}" "${heading}" start)
    string(SUBSTRING "${changelog}" ${start} -1 section)
    string(REGEX REPLACE "^(\n## [^\n]+)" "" section "${section}")
    string(REGEX REPLACE "\n## .*" "" section "${section}")
    string(REGEX MATCHALL "\n- [^\n]+(\n  [^\n]+)*" points "${section}")
    set(news "")
    foreach(point IN LISTS points)
        string(REGEX REPLACE "^\n- " "" point "${point}")
        string(REGEX REPLACE "\n +" " " point "${point}")
        string(REPLACE "`" "" point "${point}")
        string(REPLACE "&" "&amp;" point "${point}")
        string(REPLACE "<" "&lt;" point "${point}")
        string(APPEND news "          <li>${point}</li>\n")
    endforeach()

    if(NOT releases)
        set(newest_version ${version})
        set(newest_date ${date})
        set(newest_type ${type})
    endif()
    string(APPEND releases
        "    <release version=\"${version}\" date=\"${date}\" type=\"${type}\">\n"
        "      <description>\n        <ul>\n${news}        </ul>\n      </description>\n"
        "    </release>\n")
endforeach()

if(NOT newest_version STREQUAL PROJECT_VERSION)
    message(FATAL_ERROR
        "CHANGELOG.md begins with version \"${newest_version}\", the project has ${PROJECT_VERSION}.")
endif()
