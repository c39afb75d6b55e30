# How the libraries are compiled and put together.

# -ffp-contract=off: the same bits from every compiler and instruction set.
# -fno-math-errno: square roots become one instruction; nobody reads errno.
if(MSVC) # clang-cl
    set(CORVANE_COMPILE_OPTIONS /W4 /clang:-ffp-contract=off /clang:-fno-math-errno
        $<$<BOOL:${CORVANE_WARNINGS_AS_ERRORS}>:/WX>)
else()
    set(CORVANE_COMPILE_OPTIONS -Wall -Wextra -ffp-contract=off -fno-math-errno
        $<$<BOOL:${CORVANE_WARNINGS_AS_ERRORS}>:-Werror>)
endif()
if(MINGW AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    list(APPEND CORVANE_COMPILE_OPTIONS -Wa,-muse-unaligned-vector-move) # 16-byte stacks, 32-byte spills: GCC bug 54412
endif()

# A folder of the library. Its objects go into libcorvane and, with all symbols in reach, into the tests.
function(corvane_folder name)
    add_library(corvane_${name} OBJECT ${ARGN})
    target_include_directories(corvane_${name} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
    target_compile_options(corvane_${name} PRIVATE ${CORVANE_COMPILE_OPTIONS})
    target_compile_definitions(corvane_${name} PRIVATE CORVANE_BUILDING $<$<BOOL:${WIN32}>:NOMINMAX>)
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND NOT name MATCHES _kernels_)
        # GCC 12 vectorises conversions of neighbours from double to float and back, and then drops both, and with them
        # the rounding. Kernels have no double precision.
        target_compile_options(corvane_${name} PRIVATE -fno-tree-slp-vectorize)
    endif()
    set_property(GLOBAL APPEND PROPERTY CORVANE_FOLDERS corvane_${name})
endfunction()

# Sources that are compiled once per instruction set. A copy may define symbols of its own namespace only; a test reads them.
function(corvane_kernels folder)
    set(copies "base;4")
    set(instruction_sets base)
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$")
        list(APPEND copies "avx2;8;-mavx2")
        list(APPEND instruction_sets avx2)
    endif()
    while(copies)
        list(POP_FRONT copies isa lanes)
        set(flags)
        if(copies MATCHES "^-m")
            list(POP_FRONT copies flags)
        endif()
        corvane_folder(${folder}_kernels_${isa} ${ARGN})
        target_compile_definitions(corvane_${folder}_kernels_${isa} PRIVATE KERNEL_ISA=${isa} KERNEL_LANES=${lanes})
        target_compile_options(corvane_${folder}_kernels_${isa} PRIVATE ${flags})
    endwhile()
    if(avx2 IN_LIST instruction_sets)
        target_compile_definitions(corvane_${folder} PRIVATE CORVANE_KERNELS_AVX2)
    endif()
endfunction()

# libcorvane itself, once every folder is known, and the interface library through which tests see its inside.
function(corvane_library)
    get_property(folders GLOBAL PROPERTY CORVANE_FOLDERS)
    add_library(corvane_objects INTERFACE)
    foreach(folder IN LISTS folders)
        target_sources(corvane_objects INTERFACE $<TARGET_OBJECTS:${folder}>)
    endforeach()
    target_include_directories(corvane_objects INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
    target_compile_definitions(corvane_objects INTERFACE CORVANE_BUILDING)
    target_link_libraries(corvane_objects INTERFACE trevik)
    if(NOT WIN32) # there threads are the system's own
        find_package(Threads REQUIRED)
        target_link_libraries(corvane_objects INTERFACE Threads::Threads)
    endif()

    add_library(corvane SHARED)
    target_link_libraries(corvane PRIVATE corvane_objects)
    set_target_properties(corvane PROPERTIES INSTALL_RPATH $ORIGIN) # libtrevik lies beside it
    target_include_directories(
        corvane INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    corvane_shared(corvane)
    add_library(corvane::corvane ALIAS corvane)
endfunction()

# What both shared libraries have in common: name, version, and an export list that is exact: on Linux by a linker script,
# on Windows because what is marked for export turns off the export of everything.
function(corvane_shared target)
    set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
    if(MINGW)
        set_target_properties(${target} PROPERTIES PREFIX "") # corvane.dll, as every compiler on Windows calls it
        target_link_options(${target} PRIVATE -static) # the compiler's runtime inside: hosts need no other DLL
    elseif(UNIX AND NOT APPLE)
        set(script ${PROJECT_SOURCE_DIR}/cmake/${target}.map)
        target_link_options(${target} PRIVATE -Wl,--version-script=${script} -Wl,-z,defs)
        set_target_properties(${target} PROPERTIES LINK_DEPENDS ${script})
    endif()
endfunction()
