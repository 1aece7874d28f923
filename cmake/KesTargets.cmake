# What all targets of the project share.

add_library(kes_options INTERFACE)
target_compile_features(kes_options INTERFACE cxx_std_20)
target_compile_options(
    kes_options
    INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
              -Wformat=2 -Wimplicit-fallthrough -Werror -fvisibility=hidden
              # Trace lines name source files; where the sources were built is nobody's business.
              -fmacro-prefix-map=${CMAKE_SOURCE_DIR}/=
              # GCC 12 reports copies of short strings as overlapping; they are not.
              $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(KES_SANITIZE)
    target_compile_options(kes_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
                                                 -fno-omit-frame-pointer)
    target_link_options(kes_options INTERFACE -fsanitize=address,undefined)
endif()

if(KES_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        message(FATAL_ERROR "KES_FUZZ needs clang")
    endif()
    # Without what only costs speed here: comparisons are traced to find magic words, which the dictionaries and the
    # repaired inputs bring; the type behind each virtual call is checked by the tests, which replay all inputs.
    target_compile_options(kes_options INTERFACE -fsanitize-coverage=inline-8bit-counters,pc-table
                                                 -fno-sanitize=vptr)
    target_link_options(kes_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# kes_internal_library(NAME SOURCES...): a static library for use inside the project only.
function(kes_internal_library name)
    add_library(${name} STATIC ${ARGN})
    set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_EXTENSIONS OFF)
    target_link_libraries(${name} PUBLIC kes_options)
endfunction()

# kes_plugin(TARGET FILE_NAME SOURCES...): a plug-in module FILE_NAME.kpm in the plug-in folder.
function(kes_plugin target file)
    add_library(${target} MODULE ${ARGN})
    set_target_properties(
        ${target}
        PROPERTIES OUTPUT_NAME ${file}
                   PREFIX ""
                   SUFFIX ".kpm"
                   CXX_EXTENSIONS OFF
                   LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${KES_PLUGIN_DIR}
                   INSTALL_RPATH "$ORIGIN/../.."
                   BUILD_WITH_INSTALL_RPATH ON)
    target_link_libraries(${target} PRIVATE kes_options kesconfigtools)
    install(TARGETS ${target} LIBRARY DESTINATION ${KES_PLUGIN_DIR})
endfunction()
