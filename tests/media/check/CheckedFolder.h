#pragma once

#include "CheckReport.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

/// A media folder that holds the generated set, file by file a link, until a test puts something
/// else in a file's place. It goes with this object.
class CheckedFolder {
public:
    CheckedFolder()
    {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        root = std::filesystem::path(testing::TempDir()) /
               ("kelpix-check-" + std::to_string(getpid()) + "-" + test->name());
        std::filesystem::remove_all(root);
        const std::filesystem::path set = KELPIX_MEDIA_DIR;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(set)) {
            const auto name = std::filesystem::relative(entry.path(), set);
            if (entry.is_directory()) {
                std::filesystem::create_directories(root / name);
            } else {
                std::filesystem::create_symlink(entry.path(), root / name);
            }
        }
    }
    CheckedFolder(const CheckedFolder&) = delete;
    CheckedFolder& operator=(const CheckedFolder&) = delete;
    ~CheckedFolder() { std::filesystem::remove_all(root); }

    const std::filesystem::path& path() const { return root; }

    void remove(const std::string& name) const { std::filesystem::remove(root / name); }

    /// Puts a file in the place of one of the set, or beside them.
    void write(const std::string& name, const std::string& bytes) const
    {
        remove(name);
        std::ofstream file(root / name, std::ios::binary);
        file << bytes;
        file.close();
        ASSERT_TRUE(file) << name;
    }

    /// Puts a folder in the place of a file.
    void makeFolder(const std::string& name) const
    {
        remove(name);
        std::filesystem::create_directory(root / name);
    }

    /// \return the content of a file
    std::string read(const std::string& name) const { return media::contentOf(root / name); }

private:
    std::filesystem::path root;
};

inline std::ostream& operator<<(std::ostream& out, const media::FileReport::Remark& remark)
{
    return out << static_cast<int>(remark.mark) << " " << remark.text;
}

/// A report with exactly one remark, which holds a text.
MATCHER_P2(Says, mark, text, "")
{
    return testing::ExplainMatchResult(
        testing::ElementsAre(testing::AllOf(
            testing::Field("mark", &media::FileReport::Remark::mark, mark),
            testing::Field("text", &media::FileReport::Remark::text, testing::HasSubstr(text)))),
        arg.remarks, result_listener);
}

/// A report with at least a remark that holds a text.
MATCHER_P2(SaysAlso, mark, text, "")
{
    return testing::ExplainMatchResult(
        testing::Contains(testing::AllOf(
            testing::Field("mark", &media::FileReport::Remark::mark, mark),
            testing::Field("text", &media::FileReport::Remark::text, testing::HasSubstr(text)))),
        arg.remarks, result_listener);
}

/// A report without remarks.
MATCHER(IsFine, "")
{
    return testing::ExplainMatchResult(testing::IsEmpty(), arg.remarks, result_listener);
}
