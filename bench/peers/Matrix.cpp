#include "MatrixPairs.h"
#include "Peers.h"

#include <cglm/cglm.h>
#include <glm/mat4x4.hpp>

namespace bench::peers {

std::vector<Contender> products(const std::shared_ptr<MatrixPairs>& pairs)
{
    return {forEachPair("cglm", pairs,
                        [](float* out, float* a, float* b) {
                            glm_mat4_mul(reinterpret_cast<vec4*>(a), reinterpret_cast<vec4*>(b),
                                         reinterpret_cast<vec4*>(out));
                        }),
            forEachPair("glm", pairs, [](float* out, const float* a, const float* b) {
                *reinterpret_cast<glm::mat4*>(out) =
                    *reinterpret_cast<const glm::mat4*>(a) * *reinterpret_cast<const glm::mat4*>(b);
            })};
}

std::vector<Contender> inverses(const std::shared_ptr<MatrixPairs>& pairs)
{
    return {forEachPair("cglm", pairs,
                        [](float* out, float* a, float*) {
                            glm_mat4_inv(reinterpret_cast<vec4*>(a), reinterpret_cast<vec4*>(out));
                        }),
            forEachPair("glm", pairs, [](float* out, const float* a, const float*) {
                *reinterpret_cast<glm::mat4*>(out) =
                    glm::inverse(*reinterpret_cast<const glm::mat4*>(a));
            })};
}

} // namespace bench::peers
