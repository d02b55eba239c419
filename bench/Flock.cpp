// One update of the whole world: the flock's steering, the figures and their tentacles.

#include "FlockWorld.h"
#include "Job.h"

#include "Boid.h"
#include "Environment.h"

#include <memory>
#include <vector>

namespace {

constexpr int TICKS = 200; // the figures are up by then, and the fish near them in schools

/// The least that a tick must do: add up the positions and velocities of each fish's neighbors,
/// found beforehand and packed.
class Sums {
public:
    explicit Sums(const Environment& environment)
    {
        std::vector<const Boid*> fish;
        for (const Node* node : environment.children) {
            if (node->getType() == RTTI_PARTICLE) {
                fish.push_back(static_cast<const Boid*>(node));
                states.push_back({fish.back()->pos, fish.back()->vel});
            }
        }
        for (const Boid* one : fish) {
            for (std::size_t i = 0; i < fish.size(); ++i) {
                if (fish[i] != one &&
                    one->searchRadius >= Vec3::EuclDistance(fish[i]->pos, one->pos)) {
                    neighbors.push_back(i);
                }
            }
            ends.push_back(neighbors.size());
        }
        sums.resize(states.size());
    }
    void update()
    {
        std::size_t next = 0;
        for (std::size_t i = 0; i < ends.size(); ++i) {
            State sum;
            for (; next < ends[i]; ++next) {
                const State& state = states[neighbors[next]];
                sum = {sum.pos + state.pos, sum.vel + state.vel};
            }
            sums[i] = sum;
        }
    }

private:
    struct State {
        Vec3 pos, vel;
    };
    std::vector<State> states, sums;
    std::vector<std::size_t> neighbors, ends;
};

/// The world and its reference, at the tick that is measured again and again.
class Scene {
public:
    explicit Scene(int numFish) : fish(numFish) {}

    void restore()
    {
        if (environment == nullptr) {
            environment = flock::newEnvironment(fish, TICKS);
            before = std::make_unique<flock::Snapshot>(*environment);
        }
        before->restore();
        if (!sums) {
            sums = std::make_unique<Sums>(*environment);
        }
    }
    void sumUp() { sums->update(); }
    void restoreReference()
    {
        restore();
        reference = flock::literalCopyOf(*environment);
    }
    void update() { flock::update(*environment); }
    void updateReference() { reference->update(0); }
    std::uint64_t hash() { return flock::hashOf(*environment); }
    std::uint64_t hashReference() { return flock::hashOf(*reference); }

private:
    int fish;
    Environment* environment = nullptr;
    std::unique_ptr<flock::Snapshot> before;
    std::unique_ptr<flock::World> reference;
    std::unique_ptr<Sums> sums;
};

bench::Job tick(const char* name, int fish)
{
    const auto scene = std::make_shared<Scene>(fish);
    return {name,
            "fish",
            static_cast<double>(fish),
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
              }},
             {"lower bound", [=] { scene->sumUp(); }}}};
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv,
                      {[] { return tick("flock tick, 100 fish and 3 figures", 100); },
                       [] { return tick("flock tick, 1,000 fish", 1000); },
                       [] { return tick("flock tick, 10,000 fish", 10000); }});
}
