// One update of the whole world: the flock's steering, the figures and their tentacles.

#include "FlockReference.h"
#include "FlockWorld.h"
#include "Job.h"

#include <memory>

namespace {

constexpr int TICKS = 200; // the figures are up by then, and the fish near them in schools

/// The world and its reference, at the tick that is measured again and again.
class Scene {
public:
    explicit Scene(int numFish) : fish(numFish) {}

    void restore()
    {
        if (!environment) {
            environment = flock::newEnvironment(fish, TICKS);
            before = std::make_unique<flock::Snapshot>(*environment);
        }
        before->restore();
    }
    void restoreReference()
    {
        restore();
        reference = std::make_unique<flock::World>(*environment);
    }
    void update() { flock::update(*environment); }
    void updateReference() { reference->update(); }
    std::uint64_t hash() { return flock::hashOf(*environment); }
    std::uint64_t hashReference() { return flock::hashOf(*reference); }

private:
    int fish;
    Environment* environment = nullptr;
    std::unique_ptr<flock::Snapshot> before;
    std::unique_ptr<flock::World> reference;
};

bench::Job tick(const char* name, int fish)
{
    const auto scene = std::make_shared<Scene>(fish);
    return {name,
            "tick",
            1,
            {{"kelpix", [=] { scene->update(); }, [=] { scene->restore(); },
              [=] {
                  scene->restore();
                  scene->update();
                  return scene->hash();
              }},
             {"reference", [=] { scene->updateReference(); }, [=] { scene->restoreReference(); },
              [=] {
                  scene->restoreReference();
                  scene->updateReference();
                  return scene->hashReference();
              }}}};
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv,
                      {[] { return tick("flock tick, 100 fish and 3 figures", 100); },
                       [] { return tick("flock tick, 1,000 fish", 1000); },
                       [] { return tick("flock tick, 10,000 fish", 10000); }});
}
