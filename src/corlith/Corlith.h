// Umbrella header of the core library: include this to get every public class.
#pragma once

#include <corlith/Module.h>
#include <corlith/Version.h>
#include <corlith/environment/Environment.h>
#include <corlith/framework/Framework.h>
#include <corlith/services/Services.h>
#include <corlith/text/Text.h>
#include <corlith/values/Values.h>
