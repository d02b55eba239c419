#include "Painter.h"
#include "Peers.h"

namespace bench::peers {

std::vector<Contender> products(const std::shared_ptr<MatrixPairs>&)
{
    return {};
}

std::vector<Contender> inverses(const std::shared_ptr<MatrixPairs>&)
{
    return {};
}

std::vector<Contender> jpegReaders(const std::string&)
{
    return {};
}

std::vector<Contender> pngReaders(const std::string&)
{
    return {};
}

std::vector<Contender> objReaders(const std::string&)
{
    return {};
}

std::vector<Contender> objReadersWithMaterials(const std::string&)
{
    return {};
}

std::vector<Contender> fonts(const std::string&, unsigned)
{
    return {};
}

std::vector<Contender> updates(int)
{
    return {};
}

std::vector<Contender> draws(int)
{
    return {};
}

std::vector<Contender> events(int)
{
    return {};
}

std::vector<Painter> painters(const FrozenScene&)
{
    return {};
}

} // namespace bench::peers
