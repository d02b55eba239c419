# The examples against the installed kelpix: cmake -S . -B DIR && cmake --build DIR
cmake_minimum_required(VERSION 3.25)
project(kelpix-examples LANGUAGES CXX)
find_package(kelpix REQUIRED)

foreach(example starfish hello-node obj-viewer shader)
    add_executable(${example} ${example}.cpp)
    target_link_libraries(${example} PRIVATE kelpix::core)
endforeach()
add_executable(creature creature.cpp)
target_link_libraries(creature PRIVATE kelpix::app)
add_executable(tiles tiles.cpp)
target_link_libraries(tiles PRIVATE kelpix::cluster)

# Where the examples find their files.
target_compile_definitions(shader PRIVATE KELPIX_EXAMPLES="${CMAKE_CURRENT_SOURCE_DIR}")
target_compile_definitions(creature PRIVATE KELPIX_SCENE="${KELPIX_MEDIA}")
target_compile_definitions(obj-viewer PRIVATE KELPIX_FONT="${KELPIX_MEDIA}/fonts/ChalkboardBold.ttf")
