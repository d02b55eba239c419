#pragma once

#include "ObjAPI.h"

#include "ObjModel.h"

#include <string>
#include <string_view>

/// These tests run without a GL context: models are read, textures are 0.
class ObjReaderTest : public ObjTest {
protected:
    /// Reads a model that is the text.
    Model model(std::string_view text)
    {
        return model_of(obj_add_file(write("m.obj", text).c_str()));
    }

    /// Reads a model of one material whose library has these lines.
    Model::Material material(const std::string& properties)
    {
        write("m.mtl", "newmtl m\n" + properties);
        const Model m = model("mtllib m.mtl\nusemtl m\nv 0 0 0\nf 1 1 1\n");
        return m.materials.at(0);
    }
};
