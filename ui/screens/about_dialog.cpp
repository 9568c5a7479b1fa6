#include "ui/screens/about_dialog.h"

#include "app/preview/program_build.h"
#include "ui/kit/words.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tamlo::ui {
namespace {

constexpr const char* kLibraries =
    "Qt, LibRaw, libjpeg-turbo, libpng, libtiff, libheif, libwebp, libjxl, Little CMS, Exiv2, ICU, FreeType, "
    "HarfBuzz, xxHash, OpenSSL, FFTW, oneTBB, Highway, JSON for Modern C++";

} // namespace

AboutDialog::AboutDialog(Desk desk, GraphicsProbe& graphics, QWidget* parent)
    : Dialog("menu.help.about", parent), desk_(desk), graphics_(graphics), text_(new QLabel(this))
{
    text_->setTextFormat(Qt::PlainText);
    text_->setWordWrap(true);
    text_->setMinimumWidth(420);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    lines().addWidget(text_);
    addSideButton("common.copy", [this] { QGuiApplication::clipboard()->setText(text_->text()); });
    addButton("common.close", [this] { close(); })->setFocus();
    retranslate();
}

void AboutDialog::retranslate()
{
    const CatalogueLists& lists = desk_.model.lists.all();
    QStringList parts{QStringLiteral("Tamlo ") + qt(programBuild()), word("about.licence"),
                      word("about.catalogue", {{"films", lists.films.size()},
                                               {"papers", lists.papers.size()},
                                               {"lenses", lists.lenses.size()}})};
    if (const auto& found = graphics_.graphics())
        parts << word(
            "about.renders",
            {{"backend", found->backend}, {"vectors", found->vectors}, {"threads", found->threads}});
    parts << word("about.libraries", {{"list", kLibraries}});
    text_->setText(parts.join(QStringLiteral("\n\n")));
}

} // namespace tamlo::ui
