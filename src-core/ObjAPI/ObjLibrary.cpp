#include "ObjLibrary.h"
#include "ObjStore.h"
#include "ObjText.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <string_view>

namespace obj {

namespace {

bool take_clamp(const char*& text, bool& clamp)
{
    const char* p = text;
    if (!take_option(p, "-clamp")) {
        return false;
    }
    const std::string_view word = take_word(p);
    if (word.empty()) {
        return false;
    }
    clamp = word == "on";
    text = p;
    return true;
}

/// Takes an option with one to three numbers; the values of missing numbers are unchanged.
bool take_vector(const char*& text, std::string_view option, float* v)
{
    const char* p = text;
    if (!take_option(p, option) || take_floats(p, v, 3) == 0) {
        return false;
    }
    text = p;
    return true;
}

/// Reads the options of a map. The last word that is not an option is the name of the image file.
Map read_image(const char* text)
{
    Map map;
    while (*text != '\0' && *text != '\r') {
        if (take_clamp(text, map.clamp) || take_vector(text, "-s", map.s) ||
            take_vector(text, "-o", map.o)) {
            continue;
        }
        const std::string_view word = take_word(text);
        if (word.empty()) {
            break; // white space before the end of the line
        }
        map.name = word;
    }
    return map;
}

/// Reads one line of a material.
void read_property(Material& material, std::string_view word, const char* text)
{
    constexpr std::string_view LABELS[5] = {"Kd", "Ka", "Ke", "Ks", "Ns"};
    const bool is_map = word.starts_with("map_");
    const auto label = std::find(LABELS, LABELS + 5, is_map ? word.substr(4) : word);
    const int ki = static_cast<int>(label - LABELS);
    if (word == "d") {
        take_floats(text, &material.c[0][3], 1);
    } else if (ki < 5 && is_map) {
        std::erase_if(material.maps, [ki](const Map& map) { return map.ki == ki; });
        material.maps.push_back(read_image(text));
        material.maps.back().ki = ki;
    } else if (ki < 5) {
        take_floats(text, material.c[ki], 3);
    }
}

std::uint32_t hash_of(std::string_view name)
{
    return static_cast<std::uint32_t>(std::hash<std::string_view>()(name));
}

} // namespace

/// The slot of this name, or the empty one where it belongs. There must be slots.
std::size_t Library::slot_of(std::string_view name, std::uint32_t hash) const
{
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = hash & mask;
    while (slots_[at].place != 0 &&
           (slots_[at].hash != hash || materials_[slots_[at].place - 1].name != name)) {
        at = (at + 1) & mask;
    }
    return at;
}

const Material* Library::find(std::string_view name) const
{
    if (slots_.empty()) {
        return nullptr;
    }
    const std::uint32_t place = slots_[slot_of(name, hash_of(name))].place;
    return place == 0 ? nullptr : &materials_[place - 1];
}

Material* Library::add(std::string_view name)
{
    if (2 * (materials_.size() + 1) >= slots_.size()) {
        enlarge();
    }
    const std::uint32_t hash = hash_of(name);
    Slot& slot = slots_[slot_of(name, hash)];
    if (slot.place != 0) {
        return nullptr;
    }
    materials_.emplace_back().name = name;
    slot = {hash, static_cast<std::uint32_t>(materials_.size())};
    return &materials_.back();
}

void Library::enlarge()
{
    constexpr std::size_t FEWEST = 16;
    std::vector<Slot> old(std::max(FEWEST, 2 * slots_.size()));
    old.swap(slots_);
    const std::size_t mask = slots_.size() - 1;
    for (const Slot& slot : old) {
        if (slot.place != 0) {
            std::size_t at = slot.hash & mask;
            while (slots_[at].place != 0) {
                at = (at + 1) & mask;
            }
            slots_[at] = slot;
        }
    }
}

Library read_library(const std::string& path)
{
    Library library;
    LineReader reader(path.c_str());
    Material* material = nullptr;
    while (const char* text = reader.next()) {
        const std::string_view word = take_word(text);
        if (word == "newmtl") {
            material = library.add(take_word(text));
            if (material != nullptr) {
                std::memcpy(material->c, DEFAULT_COLORS, sizeof DEFAULT_COLORS);
            }
        } else if (material != nullptr) {
            read_property(*material, word, text);
        }
    }
    return library;
}

} // namespace obj
