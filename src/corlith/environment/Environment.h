// All of the environment layer: the process-wide utility object, the small path, file
// and language-file classes, the recent-file list and the manual launcher.
#pragma once

#include <corlith/environment/Authenticode.h>
#include <corlith/environment/LFile.h>
#include <corlith/environment/LPath.h>
#include <corlith/environment/LRecentFileList.h>
#include <corlith/environment/LangIni.h>
#include <corlith/environment/Menual.h>
#include <corlith/environment/Utility.h>
