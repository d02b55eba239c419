// Products and inverses of 4x4 matrices, as the draw walk and the nodes' transforms need them.

#include "Job.h"

#include "Matrix.h"

#include <array>
#include <cglm/cglm.h>
#include <glm/mat4x4.hpp>
#include <memory>
#include <random>

namespace {

constexpr int COUNT = 1000;

struct Input {
    alignas(16) std::array<std::array<float, 16>, COUNT> a;
    alignas(16) std::array<std::array<float, 16>, COUNT> b;
    alignas(16) std::array<std::array<float, 16>, COUNT> out;
};

std::shared_ptr<Input> newInput()
{
    auto input = std::make_shared<Input>();
    std::minstd_rand random(1);
    std::uniform_real_distribution<float> number(-1, 1);
    for (auto* matrices : {&input->a, &input->b}) {
        for (auto& matrix : *matrices) {
            for (float& element : matrix) {
                element = number(random);
            }
        }
    }
    return input;
}

/// Each element a sum over k = 0..3 in this order.
void literalProduct(float* out, const float* a, const float* b)
{
    float product[16];
    for (int column = 0; column < 4; ++column) {
        for (int row = 0; row < 4; ++row) {
            float sum = 0;
            for (int k = 0; k < 4; ++k) {
                sum += a[4 * k + row] * b[4 * column + k];
            }
            product[4 * column + row] = sum;
        }
    }
    for (int i = 0; i < 16; ++i) {
        out[i] = product[i];
    }
}

/// A way that does one thing to each pair of matrices.
template<typename Operation>
bench::Way way(const char* name, const std::shared_ptr<Input>& input, Operation operation)
{
    return {name, [input, operation] {
                for (std::size_t i = 0; i < COUNT; ++i) {
                    operation(input->out[i].data(), input->a[i].data(), input->b[i].data());
                }
            }};
}

bench::Way withResult(bench::Way way, const std::shared_ptr<Input>& input)
{
    way.result = [run = way.run, input] {
        run();
        return bench::hashOf(&input->out, sizeof input->out);
    };
    return way;
}

bench::Job product()
{
    const auto input = newInput();
    // A sum that starts at 0 ends where one that starts with its first product does, unless all
    // products are zeros: there are none here.
    return {"do_multiply",
            "product",
            COUNT,
            {withResult(way("kelpix", input, Matrix::do_multiply), input),
             withResult(way("reference", input, literalProduct), input),
             way("cglm", input,
                 [](float* out, float* a, float* b) {
                     glm_mat4_mul(reinterpret_cast<vec4*>(a), reinterpret_cast<vec4*>(b),
                                  reinterpret_cast<vec4*>(out));
                 }),
             way("glm", input, [](float* out, const float* a, const float* b) {
                 *reinterpret_cast<glm::mat4*>(out) = *reinterpret_cast<const glm::mat4*>(a) *
                                                      *reinterpret_cast<const glm::mat4*>(b);
             })}};
}

bench::Job inverse()
{
    const auto input = newInput();
    return {"do_inverse",
            "inverse",
            COUNT,
            {way("kelpix", input,
                 [](float* out, const float* a, const float*) { Matrix::do_inverse(out, a); }),
             way("cglm", input,
                 [](float* out, float* a, float*) {
                     glm_mat4_inv(reinterpret_cast<vec4*>(a), reinterpret_cast<vec4*>(out));
                 }),
             way("glm", input, [](float* out, const float* a, const float*) {
                 *reinterpret_cast<glm::mat4*>(out) =
                     glm::inverse(*reinterpret_cast<const glm::mat4*>(a));
             })}};
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, {product, inverse});
}
