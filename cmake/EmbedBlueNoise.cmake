# cmake -D DATA=table.base64 -D OUT=file.cpp -P EmbedBlueNoise.cmake
# Writes a C++ file that carries the blue-noise table as one base64 text.
file(READ ${DATA} text)
string(STRIP "${text}" text)
file(WRITE ${OUT} "// Made from the blue-noise table by cmake/EmbedBlueNoise.cmake.
#include \"core/process/press/blue_noise.h\"

std::string_view tamlo::BundledData::blueNoise256()
{
    return R\"tamlo(${text})tamlo\";
}
")
