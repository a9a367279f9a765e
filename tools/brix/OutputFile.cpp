#include "OutputFile.h"

#include "Signals.h"
#include "System.h"
#include "Text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace brix::tools {
namespace {

namespace fs = std::filesystem;

constexpr int StandardOutput = 1; // on every system
constexpr int LastStandardFile = 2;

std::runtime_error CannotWrite(const fs::path& name, int error)
{
    return std::runtime_error("Failed to write the file " + Quoted(name) + ": " + SystemReason(error) + ".");
}

// The file that a name stands for, whether it exists or not.
fs::path BehindLinks(fs::path filePath)
{
    std::error_code error;
    for (int links = 0; fs::is_symlink(filePath, error); ++links) {
        if (links == 40) throw CannotWrite(filePath, ELOOP);
        filePath = filePath.parent_path() / fs::read_symlink(filePath, error); // an absolute one replaces the folder
    }
    return filePath;
}

// Names of open files, as /dev/stdout is one: who opened them holds them, so that nothing can take their place.
bool NamesAnOpenFile(const fs::path& filePath)
{
    const std::string text = filePath.lexically_normal().string();
    return text.starts_with("/dev/fd/") || text.starts_with("/dev/std") || text.starts_with("/proc/");
}

bool IsWrittenStraight(const fs::path& name, const fs::path& target)
{
    std::error_code error;
    const fs::file_status status = fs::status(target, error);
    return IsStandardOutput(name) || NamesAnOpenFile(name) || (fs::exists(status) && !fs::is_regular_file(status));
}

fs::path FolderOf(const fs::path& filePath) { return filePath.has_parent_path() ? filePath.parent_path() : fs::path("."); }

} // namespace

bool IsStandardOutput(const fs::path& filePath) { return filePath == "-" || filePath == "/dev/stdout"; }

void RequireWritable(const fs::path& filePath)
{
    if (IsStandardOutput(filePath)) return;
    const fs::path target = BehindLinks(filePath);
    if (const int error = WritingError(target)) throw CannotWrite(filePath, error);
    if (IsWrittenStraight(filePath, target)) return;
    if (const int error = FolderError(FolderOf(target))) throw CannotWrite(filePath, error);
}

// Passes bytes to the system, and keeps the number of its error, which streams forget.
class OutputFile::Buffer : public std::streambuf
{
public:
    Buffer(int file, Progress& progress, double expectedBytes) : file_(file), progress_(progress), expectedBytes_(expectedBytes)
    {
        setp(block_.data(), block_.data() + block_.size());
    }
    ~Buffer() override
    {
        if (file_ > LastStandardFile) CloseFile(file_);
    }

    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    int File() const { return file_; }
    int Error() const { return error_; }
    std::int64_t BytesWritten() const { return written_; }

    void Close()
    {
        if (file_ <= LastStandardFile) return;
        const int error = CloseFile(std::exchange(file_, -1));
        if (error_ == 0) error_ = error;
    }

protected:
    int_type overflow(int_type byte) override
    {
        if (sync() != 0) return traits_type::eof();
        if (traits_type::eq_int_type(byte, traits_type::eof())) return traits_type::not_eof(byte);
        return sputc(traits_type::to_char_type(byte));
    }

    std::streamsize xsputn(const char* bytes, std::streamsize count) override
    {
        if (count < epptr() - pptr()) {
            std::memcpy(pptr(), bytes, static_cast<std::size_t>(count));
            pbump(static_cast<int>(count));
            return count;
        }
        return sync() == 0 && PassOn(bytes, count) ? count : 0;
    }

    int sync() override
    {
        const bool isPassedOn = PassOn(pbase(), pptr() - pbase());
        setp(block_.data(), block_.data() + block_.size());
        return isPassedOn ? 0 : -1;
    }

private:
    bool PassOn(const char* bytes, std::streamsize count)
    {
        while (count > 0 && error_ == 0) {
            const std::ptrdiff_t taken = WriteBytes(file_, bytes, static_cast<std::size_t>(count));
            if (taken < 0) error_ = errno;
            if (taken <= 0) break;
            bytes += taken;
            count -= taken;
            written_ += taken;
            progress_.Update(static_cast<double>(written_), expectedBytes_);
        }
        return count == 0;
    }

    int file_;
    Progress& progress_;
    double expectedBytes_;
    int error_ = 0;
    std::int64_t written_ = 0;
    std::array<char, 1 << 16> block_;
};

OutputFile::OutputFile(const fs::path& target, double expectedBytes)
    : name_(target), target_(BehindLinks(target)), progress_("writing " + target.string()), expectedBytes_(expectedBytes)
{
    RequireWritable(target);
    if (IsStandardOutput(name_)) {
        buffer_ = std::make_unique<Buffer>(StandardOutput, progress_, expectedBytes_);
    } else if (IsWrittenStraight(name_, target_)) {
        const int file = OpenToOverwrite(name_);
        if (file < 0) throw CannotWrite(name_, errno);
        buffer_ = std::make_unique<Buffer>(file, progress_, expectedBytes_);
    } else {
        OpenTemporary();
    }
    stream_.rdbuf(buffer_.get());
}

OutputFile::~OutputFile() { Discard(); }

// In the target's folder, because a file can take another one's place only within a file system.
void OutputFile::OpenTemporary()
{
    for (int number = 0;; ++number) {
        temporary_ = FolderOf(target_) / (".brix-" + std::to_string(ProcessNumber()) + "-" + std::to_string(number) + ".part");
        const SignalsWait guard;
        const int file = OpenNew(temporary_);
        if (file < 0 && errno == EEXIST) continue;
        if (file < 0) {
            temporary_.clear();
            throw CannotWrite(name_, errno);
        }
        NoteUnfinished(temporary_); // a name that the system has taken is not too long
        buffer_ = std::make_unique<Buffer>(file, progress_, expectedBytes_);
        return;
    }
}

void OutputFile::Discard()
{
    if (temporary_.empty()) return;
    const SignalsWait guard;
    if (buffer_) buffer_->Close();
    RemoveFile(temporary_);
    ForgetUnfinished();
    temporary_.clear();
}

std::ostream& OutputFile::Stream() { return stream_; }

std::runtime_error OutputFile::Failure() const { return CannotWrite(name_, buffer_->Error() != 0 ? buffer_->Error() : EIO); }

std::int64_t OutputFile::BytesWritten() const { return buffer_->BytesWritten(); }

void OutputFile::Commit()
{
    if (!stream_.flush()) throw Failure();
    if (temporary_.empty()) {
        buffer_->Close();
        if (buffer_->Error() != 0) throw Failure();
        return;
    }
    if (const int error = CopyPermissions(target_, buffer_->File())) throw CannotWrite(name_, error);
    // The content reaches the disk before the name does.
    if (const int error = FlushToDisk(buffer_->File())) throw CannotWrite(name_, error);
    buffer_->Close();
    if (buffer_->Error() != 0) throw Failure();
    const SignalsWait guard;
    if (const int error = RenameOver(temporary_, target_)) throw CannotWrite(name_, error);
    ForgetUnfinished();
    temporary_.clear();
}

} // namespace brix::tools
