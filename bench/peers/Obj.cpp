#include "Peers.h"

#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <tiny_obj_loader.h>

namespace bench::peers {

std::vector<Contender> objReaders(const std::string& path)
{
    return {{.name = "tinyobjloader",
             .run =
                 [path] {
                     tinyobj::ObjReader reader;
                     reader.ParseFromFile(path);
                 }},
            {.name = "assimp", .run = [path] {
                 Assimp::Importer importer;
                 importer.ReadFile(path, aiProcess_Triangulate);
             }}};
}

} // namespace bench::peers
