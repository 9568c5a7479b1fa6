# cmake -D IN=file -D NAME=function -D HEADER=path.h -D NAMESPACE=a::b -D OUT=file.cpp -P EmbedBinary.cmake
# Writes a C++ file with a function NAME that gives the bytes of a file; HEADER declares it.
file(READ ${IN} bytes HEX)
string(REGEX REPLACE "(................................)" "\\1\n" lines "${bytes}")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," lines "${lines}")
get_filename_component(file_name ${IN} NAME)
file(WRITE ${OUT} "// Made from ${file_name} by cmake/EmbedBinary.cmake.
#include \"${HEADER}\"

namespace ${NAMESPACE} {
namespace {

constexpr std::uint8_t kBytes[] = {
${lines}};

} // namespace

std::span<const std::uint8_t> ${NAME}()
{
    return kBytes;
}

} // namespace ${NAMESPACE}
")
