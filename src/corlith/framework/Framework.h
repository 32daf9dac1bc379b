// All of the framework layer: the host framework's classes as the library uses them.
#pragma once

#include <corlith/framework/Archive.h>
#include <corlith/framework/Array.h>
#include <corlith/framework/Bitmap.h>
#include <corlith/framework/DesktopHooks.h>
#include <corlith/framework/Exceptions.h>
#include <corlith/framework/File.h>
#include <corlith/framework/Format.h>
#include <corlith/framework/Geometry.h>
#include <corlith/framework/HostPrompt.h>
#include <corlith/framework/MemFile.h>
#include <corlith/framework/Menu.h>
#include <corlith/framework/Object.h>
#include <corlith/framework/Profile.h>
#include <corlith/framework/RecentFileList.h>
#include <corlith/framework/StdioFile.h>
#include <corlith/framework/String.h>
#include <corlith/framework/StringArray.h>
#include <corlith/framework/Types.h>
