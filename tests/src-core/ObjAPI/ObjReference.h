#pragma once

#include "ObjModel.h"

/// The library's algorithms once more, in their plainest form: line by line with fgets and sscanf,
/// deleting and sorting one element at a time. What the tests hold the library's own, faster forms
/// against.
namespace reference {

Model read(const std::string& filename);

void mini(Model& model);
void proc(Model& model);
void norm(Model& model);

void del_mtrl(Model& model, int mi);
void del_vert(Model& model, int vi);

} // namespace reference
