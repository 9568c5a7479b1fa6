# cmake -D DATA=folder -D OUT=file.cpp -P EmbedProfiles.cmake
# Writes a C++ file with every kind/name.json below DATA as a raw string.
file(GLOB_RECURSE files RELATIVE ${DATA} ${DATA}/*.json)
list(SORT files)
set(rows "")
foreach(name IN LISTS files)
  file(READ ${DATA}/${name} text)
  string(APPEND rows "        {\"${name}\", R\"tamlo(${text})tamlo\"},\n")
endforeach()
file(WRITE ${OUT} "// Made from core/profiles/data by cmake/EmbedProfiles.cmake.
#include \"core/text/bundled_profiles.h\"

namespace tamlo::BundledProfiles {

const std::map<std::string_view, std::string_view>& files()
{
    static const std::map<std::string_view, std::string_view> kFiles{
${rows}    };
    return kFiles;
}

} // namespace tamlo::BundledProfiles
")
