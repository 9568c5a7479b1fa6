// Writes the materials' page: what every film and every paper of the catalogue measures, a row and a small
// plot each, with the ground that its numbers stand on; what is off its profile is told first.
//   materials_page DIR                 rewrites DIR/README.md and DIR/plots
//   materials_page --check DIR ID...   measures these alone; fails where their rows or plots tell otherwise
// Numbers are rounded to what they mean. Another machine's last bits may still turn a rounding over, so a
// check takes a number that is one off in its last digit, and a plot's point that is one off, for the same.
#include "tools/material_rows.h"

#include "core/profiles/catalogue/profile_store.h"
#include "core/text/loc.h"

#include <cctype>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

namespace {

using namespace tamlo;
namespace fs = std::filesystem;

constexpr const char* kHead = R"(# Materials

What the films and papers of the catalogue measure, read from the densities that the program makes of test targets, as
`tamlo measure` does. Made by `build/release/tools/materials_page docs/materials`; `./check` measures a few anew.

Curves of films run from three decades below a grey card to three above, density 0 to 4 upwards. Speed: log exposure of
0.10 above Dmin, relative to a grey card. γ grey: slope at the grey card; γ most: the greatest slope over four steps of
0.15; Ḡ: mean gradient over 1.30 from the speed point, on a slide between 0.2 and 2.0 above Dmin; all three of the green
layer, or the only one. Dmin and Dmax: red, green, blue. RMS: granularity × 1000 through 48 µm at net density 1.0, as
drawn, with `grain_rms`, and as published. MTF50: cycles per mm. Halo: where it has fallen to a tenth, µm. Edge: overshoot
beside an edge. Grey card: L\* of its print. Ground: what the curve and, where it is another, a block of the profile stands
on.
)";

std::string slurp(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void write(const fs::path& path, const std::string& text)
{
    std::ofstream file(path, std::ios::binary);
    file << text << std::flush;
    if (!file) throw std::runtime_error("cannot write " + path.string());
}

/// A number at a place of a text, and how many digits follow its point.
struct Number {
    long units = 0; ///< of its last digit
    std::size_t decimals = 0, length = 0;
};

Number numberAt(const std::string& text, std::size_t at)
{
    Number out;
    bool isPastPoint = false;
    for (; at + out.length < text.size(); ++out.length) {
        const char c = text[at + out.length];
        const bool isPoint = c == '.' && !isPastPoint && at + out.length + 1 < text.size() &&
                             std::isdigit(static_cast<unsigned char>(text[at + out.length + 1]));
        if (!isPoint && !std::isdigit(static_cast<unsigned char>(c))) break;
        if (isPoint) {
            isPastPoint = true;
            continue;
        }
        out.units = out.units * 10 + (c - '0');
        out.decimals += isPastPoint ? 1 : 0;
    }
    return out;
}

bool same(const std::string& a, const std::string& b)
{
    std::size_t i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        const Number one = numberAt(a, i), two = numberAt(b, j);
        if (one.length > 0 && two.length > 0) {
            if (one.decimals != two.decimals || std::abs(one.units - two.units) > 1) return false;
            i += one.length;
            j += two.length;
        } else if (a[i++] != b[j++]) {
            return false;
        }
    }
    return i == a.size() && j == b.size();
}

fs::path plotOf(const fs::path& dir, const Materials::Row& row)
{
    return dir / "plots" / (row.id + ".svg");
}

int writePage(const fs::path& dir)
{
    const ProfileStore& store = ProfileStore::shared();
    fs::create_directories(dir / "plots");
    std::string films = Materials::filmHead(), papers = Materials::paperHead(), faults;
    const auto add = [&](const Materials::Row& row, std::string& table) {
        std::cerr << row.id << '\n';
        table += row.text;
        for (const std::string& fault : row.faults) faults += "- " + fault + "\n";
        write(plotOf(dir, row), row.plot);
    };
    for (const std::string& id : store.filmsSorted()) add(Materials::filmRow(store, id), films);
    for (const std::string& id : store.list(ProfileKind::papers)) add(Materials::paperRow(store, id), papers);
    if (faults.empty()) faults = "None.\n";
    write(dir / "README.md",
          std::string(kHead) + "\n## Off their profile\n\nCurves that measure off their " +
              "profile by more than 0.03 D RMS, and granularity with `grain_rms` off its " +
              "published figure by more than 10 %.\n\n" + faults + "\n## Films\n\n" + films +
              "\n## Papers\n\nEach with the film that it is printed from here.\n\n" + papers);
    return 0;
}

int check(const fs::path& dir, const std::vector<std::string>& ids)
{
    const ProfileStore& store = ProfileStore::shared();
    const std::string page = slurp(dir / "README.md");
    int status = 0;
    for (const std::string& id : ids) {
        const bool isFilm = store.isBuiltin(ProfileKind::films, id);
        const Materials::Row row = isFilm ? Materials::filmRow(store, id) : Materials::paperRow(store, id);
        const std::size_t from = page.find(row.text.substr(0, row.text.find(')') + 1));
        const std::string told = from == page.npos ? "" : page.substr(from, page.find('\n', from) + 1 - from);
        if (!same(told, row.text)) {
            std::cerr << id << " measures\n  " << row.text << "and the page tells\n  " << told << '\n';
            status = 1;
        }
        if (!same(slurp(plotOf(dir, row)), row.plot)) {
            std::cerr << id << ": the plot is another\n";
            status = 1;
        }
        for (const std::string& fault : row.faults)
            if (page.find(fault.substr(0, fault.find(':'))) == page.npos) {
                std::cerr << id << " is off its profile, and the page doesn't say so\n";
                status = 1;
            }
    }
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> words(argv + 1, argv + argc);
    const bool checks = !words.empty() && words[0] == "--check";
    if (checks ? words.size() < 3 : words.size() != 1) {
        std::cerr << "usage: materials_page DIR, or materials_page --check DIR ID...\n";
        return 2;
    }
    try {
        Loc::setOverride(Loc::Lang::en);
        if (checks) return check(words[1], {words.begin() + 2, words.end()});
        return writePage(words[0]);
    } catch (const std::exception& error) {
        std::cerr << "materials_page: " << error.what() << '\n';
        return 1;
    }
}
