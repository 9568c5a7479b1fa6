// Writes what is installed beside the program: the manual in both languages and the completion of three
// shells.
//   tamlo_pages FOLDER
#include "cli/completion.h"
#include "cli/man_page.h"
#include "core/profiles/catalogue/user_files.h"
#include "core/text/loc.h"

#include <exception>
#include <filesystem>
#include <iostream>

int main(int argc, char** argv)
{
    using namespace tamlo;
    if (argc != 2) {
        std::cerr << "usage: tamlo_pages FOLDER\n";
        return 2;
    }
    try {
        const std::filesystem::path folder = argv[1];
        Loc::setOverride(Loc::Lang::ru);
        UserFiles::write(folder / "man" / "ru" / "man1" / "tamlo.1", cli::manPage());
        Loc::setOverride(Loc::Lang::en);
        UserFiles::write(folder / "man" / "man1" / "tamlo.1", cli::manPage());
        const ProfileStore store;
        UserFiles::write(folder / "bash-completion" / "completions" / "tamlo",
                         cli::completionScript("bash", store));
        UserFiles::write(folder / "zsh" / "site-functions" / "_tamlo", cli::completionScript("zsh", store));
        UserFiles::write(folder / "fish" / "vendor_completions.d" / "tamlo.fish",
                         cli::completionScript("fish", store));
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    return 0;
}
