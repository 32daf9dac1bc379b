// The services layer in one include: auto-save back-ups, FFT jobs, the input-event
// manager with exclusive-or drawing, and the property records.
#pragma once

#include <corlith/services/AutoSave.h>
#include <corlith/services/FFT.h>
#include <corlith/services/InputEvent.h>
#include <corlith/services/Property.h>
