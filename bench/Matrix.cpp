// Products and inverses of 4x4 matrices, as the draw traversal and the nodes' transforms need them.

#include "Job.h"
#include "MatrixPairs.h"
#include "Peers.h"

#include "Matrix.h"

#include <algorithm>
#include <memory>
#include <random>

namespace {

using Input = bench::MatrixPairs;

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

/// The adjugate over the determinant, element by element.
void literalInverse(float* out, const float* m)
{
    float e[16];
    std::copy_n(m, 16, e);

    // 2x2 minors of rows 2 and 3; the digits name the two columns.
    const float s01 = e[2] * e[7] - e[6] * e[3];
    const float s02 = e[2] * e[11] - e[10] * e[3];
    const float s03 = e[2] * e[15] - e[14] * e[3];
    const float s12 = e[6] * e[11] - e[10] * e[7];
    const float s13 = e[6] * e[15] - e[14] * e[7];
    const float s23 = e[10] * e[15] - e[14] * e[11];

    // 2x2 minors of rows 1 and 3, and of rows 1 and 2.
    const float t01 = e[1] * e[7] - e[5] * e[3];
    const float t02 = e[1] * e[11] - e[9] * e[3];
    const float t03 = e[1] * e[15] - e[13] * e[3];
    const float t12 = e[5] * e[11] - e[9] * e[7];
    const float t13 = e[5] * e[15] - e[13] * e[7];
    const float t23 = e[9] * e[15] - e[13] * e[11];
    const float u01 = e[1] * e[6] - e[5] * e[2];
    const float u02 = e[1] * e[10] - e[9] * e[2];
    const float u03 = e[1] * e[14] - e[13] * e[2];
    const float u12 = e[5] * e[10] - e[9] * e[6];
    const float u13 = e[5] * e[14] - e[13] * e[6];
    const float u23 = e[9] * e[14] - e[13] * e[10];

    // Cofactors of the first row: they make the determinant and the first column of the inverse.
    const float c0 = e[5] * s23 - e[9] * s13 + e[13] * s12;
    const float c1 = -(e[1] * s23 - e[9] * s03 + e[13] * s02);
    const float c2 = e[1] * s13 - e[5] * s03 + e[13] * s01;
    const float c3 = -(e[1] * s12 - e[5] * s02 + e[9] * s01);
    const float det = e[0] * c0 + e[4] * c1 + e[8] * c2 + e[12] * c3;

    out[0] = c0 / det;
    out[1] = c1 / det;
    out[2] = c2 / det;
    out[3] = c3 / det;
    out[4] = -(e[4] * s23 - e[8] * s13 + e[12] * s12) / det;
    out[5] = (e[0] * s23 - e[8] * s03 + e[12] * s02) / det;
    out[6] = -(e[0] * s13 - e[4] * s03 + e[12] * s01) / det;
    out[7] = (e[0] * s12 - e[4] * s02 + e[8] * s01) / det;
    out[8] = (e[4] * t23 - e[8] * t13 + e[12] * t12) / det;
    out[9] = -(e[0] * t23 - e[8] * t03 + e[12] * t02) / det;
    out[10] = (e[0] * t13 - e[4] * t03 + e[12] * t01) / det;
    out[11] = -(e[0] * t12 - e[4] * t02 + e[8] * t01) / det;
    out[12] = -(e[4] * u23 - e[8] * u13 + e[12] * u12) / det;
    out[13] = (e[0] * u23 - e[8] * u03 + e[12] * u02) / det;
    out[14] = -(e[0] * u13 - e[4] * u03 + e[12] * u01) / det;
    out[15] = (e[0] * u12 - e[4] * u02 + e[8] * u01) / det;
}

bench::Contender withResult(bench::Contender contender, const std::shared_ptr<Input>& input)
{
    contender.result = [run = contender.run, input] {
        run();
        return bench::hashOf(&input->out, sizeof input->out);
    };
    return contender;
}

bench::Job product()
{
    const auto input = newInput();
    // A sum that starts at 0 ends where one that starts with its first product does, unless all
    // products are zeros: there are none here.
    bench::Job job = {
        "do_multiply",
        "product",
        Input::COUNT,
        {withResult(bench::forEachPair("kelpix", input,
                                       [](float* out, const float* a, const float* b) {
                                           Matrix::do_multiply(out, a, b);
                                       }),
                    input),
         withResult(bench::forEachPair("reference", input, literalProduct), input)}};
    bench::append(job.contenders, bench::peers::products(input));
    return job;
}

bench::Job inverse()
{
    const auto input = newInput();
    bench::Job job = {"do_inverse",
                      "inverse",
                      Input::COUNT,
                      {withResult(bench::forEachPair("kelpix", input,
                                                     [](float* out, const float* a, const float*) {
                                                         Matrix::do_inverse(out, a);
                                                     }),
                                  input),
                       withResult(bench::forEachPair("reference", input,
                                                     [](float* out, const float* a, const float*) {
                                                         literalInverse(out, a);
                                                     }),
                                  input)}};
    bench::append(job.contenders, bench::peers::inverses(input));
    return job;
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, {product, inverse});
}
