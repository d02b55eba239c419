#pragma once

/// \file
/// The GL declarations that the framework's headers need, in whatever order a program includes
/// them. GLEW's header refuses to be included after another GL header. A program that has included
/// one of those already gets no GLEW from here, only the types, which are the same in all GL
/// headers.
#ifndef GL_VERSION_1_1
#include <GL/glew.h>
#endif
