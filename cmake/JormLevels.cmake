# Instruction-set levels. A level source (src/*/*.kern.cpp) is compiled once for each of them, with the level's flags
# and JORM_LEVEL defined to the level's name, which is also the namespace that holds everything in it.
set(JORM_LEVELS base)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    list(APPEND JORM_LEVELS avx2 avx512)
    # Words that the compiler keeps in MMX registers would stand in the way of the caller's long doubles.
    set(JORM_FLAGS_base -mno-mmx)
endif()
set(JORM_FLAGS_avx2 -mavx2 -mno-mmx)
set(JORM_FLAGS_avx512 -mno-mmx -mavx512f -mavx512bw -mavx512dq -mavx512vl -mprefer-vector-width=512)

# Compiles the sources once per level and appends the objects to the variable.
function(jorm_add_level_sources variable)
    foreach(level IN LISTS JORM_LEVELS)
        add_library(jorm_${level} OBJECT ${ARGN})
        target_compile_definitions(jorm_${level} PRIVATE JORM_LEVEL=${level} JORM_LEVEL_${level}=1)
        target_compile_options(jorm_${level} PRIVATE ${JORM_FLAGS_${level}})
        target_link_libraries(jorm_${level} PRIVATE jorm_flags)
        list(APPEND ${variable} $<TARGET_OBJECTS:jorm_${level}>)
    endforeach()
    set(${variable} ${${variable}} PARENT_SCOPE)
endfunction()
