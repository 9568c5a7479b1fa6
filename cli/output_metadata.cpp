#include "cli/output_metadata.h"

#include "app/export/print_metadata.h"

namespace tamlo::cli {

OutputMetadata outputMetadata(const Finished& picture, const DevelopChoices& choices,
                              const DevelopArguments& arguments)
{
    OutputMetadata metadata = PrintMetadata::of(
        picture.source, picture.render, picture.printPxUm,
        {arguments.author, arguments.copyright, OutputMetadata::softwareName(TAMLO_VERSION)});
    if (arguments.recipe) {
        Recipe recipe = choices.recipe;
        recipe.options = picture.render.options;
        recipe.options.crop = choices.render.options.crop; // the frame's own cut belongs to the picture
        metadata.recipe = encodeRecipe(recipe);
    }
    return metadata;
}

} // namespace tamlo::cli
