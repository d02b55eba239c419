#include "Launch.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>

namespace wall {

namespace {

/// What Open MPI tells a rank; null: this is none.
const char* rankNumber()
{
    return std::getenv("OMPI_COMM_WORLD_RANK");
}

/// Starts its first argument with the others, or says that there is no such program.
constexpr const char* START =
    R"([ -x "$0" ] || { echo "kelpix-wall: $(hostname): $0 is missing" >&2; exit 127; }; exec "$0" "$@")";

} // namespace

bool isRank()
{
    return rankNumber() != nullptr;
}

bool isFirstRank()
{
    return isRank() && std::strcmp(rankNumber(), "0") == 0;
}

std::string hostName()
{
    char name[32] = {};
    gethostname(name, sizeof name);
    name[sizeof name - 1] = '\0';
    return name;
}

std::vector<std::string> launchCommand(const WallLayout& layout, const std::string& thisHost,
                                       const std::string& hostFile,
                                       const std::vector<std::string>& command)
{
    // No pages of help from Open MPI, which say nothing that the ranks or ssh do not. No binding: a
    // software renderer has threads. TCP also on one machine: shared memory would stay behind when
    // a rank is killed. No pauses of a second between the signals that end the other ranks, on one
    // machine after the other: a rank keeps nothing that it would have to save.
    std::vector<std::string> words = {"mpirun",
                                      "--quiet",
                                      "-n",
                                      std::to_string(layout.tiles.size()),
                                      "--bind-to",
                                      "none",
                                      "--oversubscribe",
                                      "--mca",
                                      "btl",
                                      "tcp,self",
                                      "--mca",
                                      "odls_base_sigkill_timeout",
                                      "0"};
    const bool here = std::all_of(layout.tiles.begin(), layout.tiles.end(),
                                  [&](const WallTile& t) { return t.host == thisHost; });
    if (here) {
        words.insert(words.end(),
                     {"--mca", "btl_tcp_if_include", "lo", "--mca", "oob_tcp_if_include", "lo"});
    } else {
        // Only the sequential mapper keeps the order: the others give rank 0 to this machine, or,
        // under Slurm, to the first host by name.
        words.insert(words.end(),
                     {"--hostfile", hostFile, "--map-by", "seq", "--mca", "plm_rsh_no_tree_spawn",
                      "1", "--mca", "plm_rsh_args", "-o BatchMode=yes -o ConnectTimeout=4"});
    }
    if (!here) {
        // Open MPI, told to be quiet, does not say where the program is missing.
        words.insert(words.end(), {"sh", "-c", START});
    }
    // A word that is ":" ends a command of mpirun's. It can only be a path here.
    std::transform(command.begin(), command.end(), std::back_inserter(words),
                   [](const std::string& word) { return word == ":" ? "./:" : word; });
    return words;
}

std::string fileInMemory(const std::string& bytes)
{
    // The launcher, which this process becomes, inherits it.
    const int file = memfd_create("hosts", 0);
    if (file < 0 || write(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
        throw std::runtime_error(std::string("cannot write the list of hosts: ") +
                                 std::strerror(errno));
    }
    return "/proc/self/fd/" + std::to_string(file);
}

void quietenTopology()
{
    // Open MPI's look at the machine would ask X servers for graphics cards, and print what they
    // say to strangers.
    setenv("HWLOC_COMPONENTS", "-gl", 0);
}

void launch(const std::vector<std::string>& command)
{
    quietenTopology();
    if (geteuid() == 0) {
        setenv("OMPI_ALLOW_RUN_AS_ROOT", "1", 1);
        setenv("OMPI_ALLOW_RUN_AS_ROOT_CONFIRM", "1", 1);
    }
    std::vector<char*> words;
    words.reserve(command.size() + 1);
    for (const std::string& word : command) {
        words.push_back(const_cast<char*>(word.c_str()));
    }
    words.push_back(nullptr);
    execvp(words.front(), words.data());
    throw std::runtime_error("cannot start " + command.front() + ": " + std::strerror(errno) +
                             "; Debian's package openmpi-bin has it");
}

} // namespace wall
