// Everything the user-interface library offers, for hosts that include one header.
#pragma once

#include <corlith/ui/Dialog.h>
#include <corlith/ui/DialogTemplate.h>
#include <corlith/ui/Window.h>
