// All of the environment layer: the process-wide utility object and the small path,
// file and language-file classes.
#pragma once

#include <corlith/environment/LFile.h>
#include <corlith/environment/LPath.h>
#include <corlith/environment/LangIni.h>
#include <corlith/environment/Utility.h>
