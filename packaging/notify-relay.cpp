// kelpix-notify-relay: runs a command, and tells the service manager in its own name what the
// command and its children have to tell. A service manager listens to the main process of a unit
// alone where the others are in the scope of a user's session, as those of a unit with PAMName=
// are.

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <string>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr const char* VARIABLE = "NOTIFY_SOCKET";
constexpr std::size_t LONGEST = 4096; // bytes of a message

/// Says what went wrong, and ends with status 1.
[[noreturn]] void fail(const char* what)
{
    std::fprintf(stderr, "kelpix-notify-relay: %s: %s\n", what, std::strerror(errno));
    std::exit(1);
}

/// Where messages for the service manager go.
struct Manager {
    sockaddr_un address{};
    socklen_t size = 0; ///< 0 = there is none

    Manager()
    {
        const char* const name = std::getenv(VARIABLE);
        const std::size_t length = name != nullptr ? std::strlen(name) : 0;
        if (length > 1 && length < sizeof address.sun_path) {
            address.sun_family = AF_UNIX;
            std::copy(name, name + length, address.sun_path);
            // A name that is no file begins with '@' in the environment.
            address.sun_path[0] = name[0] == '@' ? '\0' : name[0];
            size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + length);
        }
    }
};

/// A socket with a name that the kernel chooses, and that is no file. The name goes to the
/// environment, for the children. Others may find it too, so it tells who has sent a message.
int listen()
{
    const int socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    socklen_t size = sizeof(sa_family_t);
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    const int on = 1;
    if (socket == -1 || setsockopt(socket, SOL_SOCKET, SO_PASSCRED, &on, sizeof on) != 0 ||
        bind(socket, any, size) != 0) {
        fail("no socket");
    }
    size = sizeof address;
    getsockname(socket, any, &size);
    const std::string name(address.sun_path + 1, size - offsetof(sockaddr_un, sun_path) - 1);
    setenv(VARIABLE, ("@" + name).c_str(), 1);
    return socket;
}

/// Whether a message comes from a process of this user.
bool isOurs(msghdr& message)
{
    for (cmsghdr* part = CMSG_FIRSTHDR(&message); part != nullptr;
         part = CMSG_NXTHDR(&message, part)) {
        if (part->cmsg_level == SOL_SOCKET && part->cmsg_type == SCM_CREDENTIALS) {
            ucred sender{};
            std::memcpy(&sender, CMSG_DATA(part), sizeof sender);
            return sender.uid == geteuid();
        }
    }
    return false;
}

/// Hands all messages that have come to the service manager.
void relay(int inlet, const Manager& manager)
{
    char text[LONGEST];
    // Nothing but the sender: descriptors that are sent along find no room.
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(ucred))];
    for (;;) {
        iovec where{text, sizeof text};
        msghdr message{};
        message.msg_iov = &where;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = sizeof control;
        const ssize_t size = recvmsg(inlet, &message, MSG_DONTWAIT);
        if (size < 0) {
            return;
        }
        if (isOurs(message)) {
            sendto(inlet, text, static_cast<std::size_t>(size), MSG_NOSIGNAL,
                   reinterpret_cast<const sockaddr*>(&manager.address), manager.size);
        }
    }
}

/// Starts the command, which does not outlive this process.
pid_t start(char* const* command)
{
    const pid_t self = getpid();
    const pid_t child = fork();
    if (child == -1) {
        fail("no process");
    }
    if (child == 0) {
        // Who kills this process has asked before, and has no hold of the command.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != self) {
            _exit(1);
        }
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        execvp(command[0], command);
        fail(command[0]);
    }
    return child;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fputs("usage: kelpix-notify-relay COMMAND [ARGUMENT ...]\n", stderr);
        return 2;
    }
    const Manager manager;
    const int inlet = listen();
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGCHLD}) {
        sigaddset(&signals, signal);
    }
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    const int taken = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    const pid_t child = start(argv + 1);

    for (;;) {
        pollfd sources[] = {{inlet, POLLIN, 0}, {taken, POLLIN, 0}};
        poll(sources, 2, -1);
        relay(inlet, manager);
        signalfd_siginfo signal{};
        while (read(taken, &signal, sizeof signal) == sizeof signal) {
            if (signal.ssi_signo != SIGCHLD) {
                kill(child, static_cast<int>(signal.ssi_signo));
            }
        }
        int status = 0;
        if (waitpid(child, &status, WNOHANG) == child) {
            // As a shell tells it.
            return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
        }
    }
}
