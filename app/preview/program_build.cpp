#include "app/preview/program_build.h"

std::string tamlo::programBuild()
{
    return TAMLO_BUILD;
}
