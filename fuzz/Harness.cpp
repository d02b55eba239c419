#include "Harness.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <new>
#include <set>
#include <streambuf>
#include <unistd.h>

// The linker hands every call of NAME to __wrap_NAME and calls the library's by __real_NAME.
extern "C" {
[[noreturn]] void __real_exit(int status);
[[noreturn]] void __real_abort();
std::FILE* __real_fopen(const char* path, const char* mode);
std::FILE* __real_fdopen(int descriptor, const char* mode);
int __real_fclose(std::FILE* file);
// The sanitizers', where they are built in.
[[gnu::weak]] void* __asan_region_is_poisoned(const void* begin, std::size_t size);
[[gnu::weak]] void __lsan_disable();
[[gnu::weak]] void __lsan_enable();
int LLVMFuzzerInitialize(int* argc, char*** argv);
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
}

namespace {

/// The last part of what was printed, longer than any message. Never deleted: streams write to it
/// until the process has ended.
std::string& messages = *new std::string;
constexpr std::size_t KEPT_MESSAGES = 8192;

void note(const char* text, std::size_t size)
{
    messages.append(text, size);
    if (messages.size() > 2 * KEPT_MESSAGES) {
        messages.erase(0, messages.size() - KEPT_MESSAGES);
    }
}

ssize_t noteStream(void*, const char* text, std::size_t size)
{
    note(text, size);
    return static_cast<ssize_t>(size);
}

/// For std::cerr, which does not write through stderr's buffer.
class NoteBuffer : public std::streambuf {
    int overflow(int c) override
    {
        const char text = static_cast<char>(c);
        note(&text, 1);
        return c;
    }
    std::streamsize xsputn(const char* text, std::streamsize size) override
    {
        note(text, static_cast<std::size_t>(size));
        return size;
    }
};

int endStatus = 0;
std::set<std::FILE*> openFiles; ///< opened by code that ends, and not closed by it

/// Notes a file that was just opened. \return the file
std::FILE* noted(std::FILE* file)
{
    if (file != nullptr && fuzz::Escape::armed) {
        openFiles.insert(file);
    }
    return file;
}

[[noreturn]] void escape(int status)
{
    endStatus = status;
    std::longjmp(fuzz::Escape::back, 1);
}

/// Made at first use, removed when the process ends.
class Folder {
public:
    Folder() : name(std::filesystem::temp_directory_path() / "kelpix-fuzz-XXXXXX")
    {
        if (mkdtemp(name.data()) == nullptr) {
            fuzz::expect(false, "there is a folder for files");
        }
        name += '/';
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder()
    {
        std::error_code error;
        std::filesystem::remove_all(name, error);
    }

    void clear()
    {
        for (const std::string& file : files) {
            unlink(file.c_str());
        }
        files.clear();
    }

    std::string name;
    std::vector<std::string> files;
};

Folder& theFolder()
{
    static Folder folder;
    return folder;
}

void start()
{
    theFolder().clear();
    messages.clear();
    openFiles.clear();
}

/// Replays one input in 16 with one of the first allocations failing.
void testWithoutMemory(std::string_view input)
{
    std::uint32_t hash = 2166136261u; // FNV-1a
    for (const char c : input) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    }
    if (hash % 16 != 0) {
        return;
    }
    start();
    fuzz::memory::plan(hash / 16 % 32);
    try {
        fuzz::test(input);
        fuzz::memory::forget();
    } catch (const std::bad_alloc&) {
        fuzz::memory::leave();
        fuzz::expect(fuzz::memory::forget(), "there is memory");
    }
}

} // namespace

extern "C" {

[[noreturn]] void __wrap_exit(int status)
{
    if (fuzz::Escape::armed) {
        escape(status);
    }
    __real_exit(status);
}

[[noreturn]] void __wrap_abort()
{
    if (fuzz::Escape::armed) {
        escape(fuzz::ABORTED);
    }
    __real_abort();
}

std::FILE* __wrap_fopen(const char* path, const char* mode)
{
    return noted(__real_fopen(path, mode));
}

std::FILE* __wrap_fdopen(int descriptor, const char* mode)
{
    return noted(__real_fdopen(descriptor, mode));
}

int __wrap_fclose(std::FILE* file)
{
    openFiles.erase(file);
    return __real_fclose(file);
}

int LLVMFuzzerInitialize(int*, char***)
{
    // The fuzzer and the sanitizers write to the file descriptors, not to these.
    std::cerr.rdbuf(new NoteBuffer); // in use until the very end
    cookie_io_functions_t functions = {};
    functions.write = noteStream;
    stdout = fopencookie(nullptr, "w", functions);
    stderr = fopencookie(nullptr, "w", functions);
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    start();
    fuzz::test(input);
    testWithoutMemory(input);
    return 0;
}

} // extern "C"

namespace fuzz {

std::jmp_buf Escape::back;
bool Escape::armed = false;

Escape::Escape()
{
    armed = true;
    memory::enter();
    // Code that ends the process because there is no memory need not release any.
    if (memory::isScarce() && __lsan_disable != nullptr) {
        __lsan_disable();
    }
}

Escape::~Escape()
{
    armed = false;
    memory::leave();
    if (memory::isScarce() && __lsan_enable != nullptr) {
        __lsan_enable();
    }
}

void Escape::check(const std::vector<End>& documented)
{
    std::fflush(stdout);
    std::fflush(stderr);
    for (const End& end : documented) {
        if (end.status == endStatus && messages.ends_with(end.message)) {
            return;
        }
    }
    dprintf(STDERR_FILENO, "The process would have ended with status %d after: %s\n", endStatus,
            messages.c_str());
    expect(false, "the process ends in a documented way only");
}

void closeFiles()
{
    while (!openFiles.empty()) {
        __wrap_fclose(*openFiles.begin());
    }
}

void expect(bool holds, const char* text)
{
    if (!holds) {
        dprintf(STDERR_FILENO, "Does not hold: %s\n", text);
        __real_abort();
    }
}

void reach(const unsigned char* bytes, std::size_t count)
{
    if (__asan_region_is_poisoned != nullptr && count > 0) {
        expect(__asan_region_is_poisoned(bytes, count) == nullptr, "all bytes can be read");
    }
}

const std::string& folder()
{
    return theFolder().name;
}

std::string place(const std::string& name, std::string_view bytes)
{
    std::string path = folder() + name;
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const ssize_t written = write(file, bytes.data(), bytes.size());
    expect(written == static_cast<ssize_t>(bytes.size()), "the file can be written");
    close(file);
    theFolder().files.push_back(path);
    return path;
}

std::vector<std::string_view> parts(std::string_view input)
{
    constexpr std::string_view MARK = "@@@\n";
    std::vector<std::string_view> all;
    for (;;) {
        const std::size_t end = input.find(MARK);
        all.push_back(input.substr(0, end));
        if (end == std::string_view::npos) {
            return all;
        }
        input.remove_prefix(end + MARK.size());
    }
}

} // namespace fuzz
