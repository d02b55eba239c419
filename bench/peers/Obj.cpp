#include "Peers.h"

#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <tiny_obj_loader.h>

namespace bench::peers {
namespace {

Contender tinyobjloader(const std::string& path)
{
    return {.name = "tinyobjloader", .run = [path] {
                tinyobj::ObjReader reader;
                reader.ParseFromFile(path);
            }};
}

Contender assimp(const std::string& path)
{
    return {.name = "assimp", .run = [path] {
                Assimp::Importer importer;
                importer.ReadFile(path, aiProcess_Triangulate);
            }};
}

} // namespace

std::vector<Contender> objReaders(const std::string& path)
{
    return {tinyobjloader(path), assimp(path)};
}

std::vector<Contender> objReadersWithMaterials(const std::string& path)
{
    return {tinyobjloader(path)};
}

} // namespace bench::peers
