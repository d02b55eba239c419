// The three traversals of flat trees of plain nodes. A plain node has a transform, is always
// visible, and does nothing.

#include "Job.h"
#include "Peers.h"

#include "PivotNode.h"
#include "RootNode.h"
#include "SceneGraph.h"
#include "UserEvent.h"

#include <memory>
#include <string>
#include <vector>

namespace {

class PlainNode : public RootNode {
public:
    int cull() override { return 1; }
};

/// A root with so many plain nodes.
class Tree {
public:
    explicit Tree(int count)
    {
        for (int i = 0; i < count; ++i) {
            nodes.push_back(std::make_unique<PlainNode>());
            nodes.back()->translate(0.001f * static_cast<float>(i), 0, 0);
            root.attachChild(nodes.back().get());
        }
        graph.setRootNode(&root);
    }
    SceneGraph graph;

private:
    PlainNode root;
    std::vector<std::unique_ptr<PlainNode>> nodes;
};

using Traversal = void (*)(Tree&);
using Peers = std::vector<bench::Contender> (*)(int);

bench::Job traversal(const std::string& name, int count, Traversal own, Peers peers)
{
    const auto tree = std::make_shared<Tree>(count);
    bench::Job job = {name + ", " + std::to_string(count) + " nodes",
                      "node",
                      static_cast<double>(count),
                      {{"kelpix", [=] { own(*tree); }}}};
    bench::append(job.contenders, peers(count));
    return job;
}

} // namespace

int main(int argc, char** argv)
{
    namespace peers = bench::peers;
    std::vector<bench::JobMaker> jobs;
    for (const int count : {100, 1000, 10000}) {
        jobs.emplace_back([count] {
            return traversal(
                "update traversal", count, [](Tree& tree) { tree.graph.update(); }, peers::updates);
        });
        jobs.emplace_back([count] {
            return traversal(
                "draw traversal", count, [](Tree& tree) { tree.graph.draw(); }, peers::draws);
        });
        jobs.emplace_back([count] {
            return traversal(
                "event traversal", count, [](Tree& tree) { tree.graph.event(new UserEvent); },
                peers::events);
        });
    }
    return bench::run(argc, argv, jobs);
}
