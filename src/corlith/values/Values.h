// Umbrella header of the value layer: the shared tolerance, the owning pointer arrays,
// the archive conventions, the double and float geometry, the numeric arrays, the
// pairs and the sets.
#pragma once

#include <corlith/values/2Index.h>
#include <corlith/values/2PointD.h>
#include <corlith/values/4PointD.h>
#include <corlith/values/5PointD.h>
#include <corlith/values/ArchiveConventions.h>
#include <corlith/values/ArrayD.h>
#include <corlith/values/ArraySizeException.h>
#include <corlith/values/CircleF.h>
#include <corlith/values/DWordArrayEx.h>
#include <corlith/values/DWordPair.h>
#include <corlith/values/ExPtrArray.h>
#include <corlith/values/FPoint.h>
#include <corlith/values/FRect.h>
#include <corlith/values/IntPair.h>
#include <corlith/values/Point3D.h>
#include <corlith/values/PointD.h>
#include <corlith/values/PointF.h>
#include <corlith/values/PointN.h>
#include <corlith/values/RectD.h>
#include <corlith/values/RectF.h>
#include <corlith/values/SortSupport.h>
#include <corlith/values/StringPair.h>
#include <corlith/values/UnitTolerance.h>
