# Fails when a source file includes a header of a folder above its own in the layer chain.
# Run as: cmake -DROOT=<repository> -P LayerIncludes.cmake
cmake_minimum_required(VERSION 3.25)

# Each folder with the folders it may include; interfaces/ is open to every layer.
set(allowed_base base interfaces)
set(allowed_platform ${allowed_base} platform)
set(allowed_datatypes ${allowed_platform} datatypes)
set(allowed_connections ${allowed_datatypes} connections)
set(allowed_parameters ${allowed_datatypes} parameters)
set(allowed_app_object ${allowed_connections} parameters app_object)
set(allowed_editors ${allowed_app_object} editors)
# libzerbin.so.1 is the engine with its C interface zerbin/; no windows.
set(allowed_libzerbin ${allowed_app_object} libzerbin zerbin)
set(allowed_interfaces interfaces)
# The plug-in holds the core (and the editors when built) and its own public header zerbin/.
set(allowed_plugin ${allowed_editors} libzerbin plugin zerbin)
# The desktop host is a third-party host: the interfaces and the plug-in's public headers only.
set(allowed_studio interfaces studio zerbin)

set(failures "")
foreach(folder IN ITEMS base platform datatypes connections parameters app_object editors
                        interfaces libzerbin plugin studio)
    file(GLOB files "${ROOT}/${folder}/*.h" "${ROOT}/${folder}/*.cpp")
    foreach(file IN LISTS files)
        file(STRINGS "${file}" includes REGEX "^#include \"[a-z_]+/")
        foreach(line IN LISTS includes)
            string(REGEX REPLACE "^#include \"([a-z_]+)/.*" "\\1" target "${line}")
            if(NOT target IN_LIST allowed_${folder})
                file(RELATIVE_PATH rel "${ROOT}" "${file}")
                string(APPEND failures "  ${rel}: ${line}\n")
            endif()
        endforeach()
    endforeach()
endforeach()

if(failures)
    message(FATAL_ERROR "includes that point up the layer chain:\n${failures}")
endif()
