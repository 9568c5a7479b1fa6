#include "app/project/whole_file.h"

#include "core/image/tamlo_error.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"
#include "platform/file_info.h"
#include "platform/input_file.h"
#include "platform/platform_error.h"

namespace tamlo {

namespace fs = std::filesystem;

std::string readWhole(const fs::path& file)
{
    try {
        const platform::InputFile input(file.string());
        const auto info = platform::fileInfo(file);
        if (info && info->size > kLargestDocumentBytes)
            throw platform::PlatformError("it is far too large for a document");
        std::string text;
        constexpr std::size_t kPiece = std::size_t{1} << 20;
        // As much as there is, whatever its size was said to be.
        for (std::size_t read = 1; read > 0;) {
            const std::size_t before = text.size();
            text.resize(before + (info && before == 0 ? static_cast<std::size_t>(info->size) + 1 : kPiece));
            read = input.readHead({text.data() + before, text.size() - before});
            text.resize(before + read);
        }
        return text;
    } catch (const platform::PlatformError& error) {
        throw TamloError::io(
            T("io.err.read", {{"file", file.string()}, {"error", ErrorWords::reason(error)}}));
    }
}

std::optional<std::string> readWholeIfThere(const fs::path& file)
{
    std::error_code problem;
    const fs::file_status status = fs::symlink_status(file, problem);
    if (status.type() == fs::file_type::not_found) return std::nullopt;
    return readWhole(file);
}

} // namespace tamlo
