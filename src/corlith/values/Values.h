// Umbrella header of the value layer: the shared tolerance, the owning pointer arrays,
// the archive conventions, and the double-precision points and rectangles.
#pragma once

#include <corlith/values/2Index.h>
#include <corlith/values/2PointD.h>
#include <corlith/values/4PointD.h>
#include <corlith/values/5PointD.h>
#include <corlith/values/ArchiveConventions.h>
#include <corlith/values/ArraySizeException.h>
#include <corlith/values/ExPtrArray.h>
#include <corlith/values/Point3D.h>
#include <corlith/values/PointD.h>
#include <corlith/values/PointN.h>
#include <corlith/values/RectD.h>
#include <corlith/values/UnitTolerance.h>
