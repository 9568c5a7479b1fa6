// FileState: how a frame's source stands on disk. Found out anew in every session, never stored.
#pragma once

namespace tamlo {

enum class FileState {
    ok,
    moved,     ///< found in another place
    offline,   ///< on a volume that is away
    missing,   ///< its volume is there, the file is not
    changed,   ///< another picture lies in its place
    unreadable ///< there, but can't be decoded
};

constexpr bool hasOriginal(FileState state)
{
    return state == FileState::ok || state == FileState::moved || state == FileState::changed;
}
constexpr bool canRelink(FileState state)
{
    return state == FileState::offline || state == FileState::missing;
}
constexpr bool needsAttention(FileState state)
{
    return canRelink(state) || state == FileState::unreadable;
}

} // namespace tamlo
