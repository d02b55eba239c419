// One update of the whole world: the flock's steering, the figures and their tentacles.

#include "FlockReference.h"
#include "FlockWorld.h"
#include "Job.h"

#include <memory>

namespace {

constexpr int TICKS = 200; // the figures are up by then, and the fish near them in schools

bench::Job tick(int fish)
{
    Environment* environment = flock::newEnvironment(fish, TICKS);
    const auto before = std::make_shared<flock::Snapshot>(*environment);
    const auto world = std::make_shared<std::unique_ptr<flock::World>>();

    const auto update = [environment] { flock::update(*environment); };
    const auto restore = [before] { before->restore(); };
    const auto updateReference = [world] { (*world)->update(); };
    const auto restoreReference = [before, world, environment] {
        before->restore();
        *world = std::make_unique<flock::World>(*environment);
    };
    return {"tick",
            1,
            {{"kelpix", update, restore,
              [=] {
                  restore();
                  update();
                  return flock::hashOf(*environment);
              }},
             {"reference", updateReference, restoreReference, [=] {
                  restoreReference();
                  updateReference();
                  return flock::hashOf(**world);
              }}}};
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv,
                      {{"flock tick, 100 fish and 3 figures", [] { return tick(100); }},
                       {"flock tick, 1,000 fish", [] { return tick(1000); }},
                       {"flock tick, 10,000 fish", [] { return tick(10000); }}});
}
