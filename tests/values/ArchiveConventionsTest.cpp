// Archive bytes of every class of the layer against hand-built vectors, round trips,
// and the tolerated forms: an old 4-byte count, a foreign version or header skipped
// silently, a hostile count ending in end-of-file, and the C5PointDArray asymmetry.
#include "TestSupport.h"

#include <corlith/values/Values.h>

#include <corlith/framework/Archive.h>
#include <corlith/framework/MemFile.h>

#include <gtest/gtest.h>

namespace {

using namespace corlith::test;

Bytes PointBytes(double x, double y) {
  Bytes b;
  Put32(b, 1);
  PutDouble(b, x);
  PutDouble(b, y);
  return b;
}

TEST(ArchiveConventions, ValueClassesWriteVersionThenFields) {
  CPointD p(1.5, -2.0);
  EXPECT_EQ(Store(p), PointBytes(1.5, -2.0));

  CPoint3D p3(1, 2, 3);
  Bytes b3 = PointBytes(1, 2);
  PutDouble(b3, 3);
  EXPECT_EQ(Store(p3), b3);

  CPointN pn(-7, 8);
  Bytes bn;
  Put32(bn, 1);
  Put32(bn, static_cast<std::uint32_t>(-7));
  Put32(bn, 8);
  EXPECT_EQ(Store(pn), bn);

  C2PointD seg(CPointD(1, 2), CPointD(3, 4));
  Bytes bs;
  Put32(bs, 1);
  EXPECT_EQ(Store(seg), Cat({bs, PointBytes(1, 2), PointBytes(3, 4)}))
      << "nested records carry their own version";

  C4PointD quad(CPointD(1, 1), CPointD(2, 2), CPointD(3, 3), CPointD(4, 4));
  Bytes bq = bs;
  for (int i = 1; i <= 4; ++i) bq = Cat({bq, PointBytes(i, i)});
  EXPECT_EQ(Store(quad), bq);

  CRectD r(0, 10, 4, 2);
  Bytes br;
  Put32(br, 1);
  for (double d : {0.0, 10.0, 4.0, 2.0}) PutDouble(br, d);
  EXPECT_EQ(Store(r), br);

  C2Index ix(3, 5);
  Bytes bi;
  Put32(bi, 1);
  Put32(bi, 3);
  Put32(bi, 5);
  EXPECT_EQ(Store(ix), bi);
}

TEST(ArchiveConventions, ArraysWriteHeaderCountAndElements) {
  CArrayPointD values;
  CPointD a(1, 2), b(3, 4);
  values.Add(a);
  values.Add(b);
  EXPECT_EQ(Store(values), Cat({Header(2), PointBytes(1, 2), PointBytes(3, 4)}));

  CArrayRectD rects;
  rects.Add(new CRectD(1, 2, 3, 4));
  Bytes br = Header(1);
  Put32(br, 1);
  for (double d : {1.0, 2.0, 3.0, 4.0}) PutDouble(br, d);
  EXPECT_EQ(Store(rects), br);

  CArrayArrayPointD nested;
  nested.Add(new CArrayPointD(values));
  nested.Add(new CArrayPointD());
  EXPECT_EQ(Store(nested), Cat({Header(2), Store(values), Header(0)}))
      << "inner arrays carry their own header";

  CArrayPointN ints;
  CPointN n(1, 2);
  ints.Add(n);
  Bytes bn = Header(1);
  Put32(bn, 1);
  Put32(bn, 1);
  Put32(bn, 2);
  EXPECT_EQ(Store(ints), bn);
}

template <typename T>
void ExpectRoundTrip(T& original) {
  const Bytes bytes = Store(original);
  T loaded;
  EXPECT_EQ(Load(bytes, loaded), bytes.size());
  EXPECT_TRUE(loaded == original);
  EXPECT_EQ(Store(loaded), bytes);
}

TEST(ArchiveConventions, EveryArrayRoundTrips) {
  CArrayPointD pts;
  for (int i = 0; i < 300; ++i) {
    CPointD p(i * 0.5, -i);
    pts.Add(p);
  }
  ExpectRoundTrip(pts);
  CArrayArrayPointD nested;
  nested.Add(new CArrayPointD(pts));
  nested.Add(new CArrayPointD());
  ExpectRoundTrip(nested);
  CArrayPoint3D p3;
  p3.Add(new CPoint3D(1, 2, 3));
  ExpectRoundTrip(p3);
  CArrayPointN_Array pn;
  pn.Add(new CArrayPointN());
  pn.GetAt(0)->Add(*std::make_unique<CPointN>(4, 5));
  ExpectRoundTrip(pn);
  C2PointDArray segs;
  segs.Add(new C2PointD(CPointD(0, 0), CPointD(3, 4)));
  ExpectRoundTrip(segs);
  C4PointDArray quads;
  quads.Add(new C4PointD(CPointD(0, 0), CPointD(0, 1), CPointD(1, 1), CPointD(1, 0)));
  ExpectRoundTrip(quads);
  C2IndexArray idx;
  idx.Add(new C2Index(1, 2));
  ExpectRoundTrip(idx);
  CArrayRectD rects;
  rects.Add(new CRectD(0, 1, 2, 3));
  ExpectRoundTrip(rects);
}

TEST(ArchiveConventions, OldFourByteCountIsStillRead) {
  Bytes old;
  Put32(old, 0x00000001u);
  Put32(old, 2);
  old = Cat({old, PointBytes(1, 2), PointBytes(3, 4)});
  CArrayPointD pts;
  EXPECT_EQ(Load(old, pts), old.size());
  ASSERT_EQ(pts.GetSize(), 2);
  EXPECT_EQ(pts[1].x, 3);

  C2IndexArray idx;
  Bytes oi;
  Put32(oi, 1);
  Put32(oi, 1);
  Put32(oi, 1);
  Put32(oi, 7);
  Put32(oi, 8);
  EXPECT_EQ(Load(oi, idx), oi.size());
  ASSERT_EQ(idx.GetSize(), 1);
  EXPECT_TRUE(idx.GetAt(0)->IsMatch(7, 8));

  Bytes negative;
  Put32(negative, 1);
  Put32(negative, static_cast<std::uint32_t>(-5));
  EXPECT_EQ(Load(negative, pts), 8u);
  EXPECT_EQ(pts.GetSize(), 0) << "a negative count loads nothing";
}

TEST(ArchiveConventions, ForeignHeaderOrVersionIsSkippedSilently) {
  Bytes foreign = Header(1);
  foreign[0] = 0x02;  // 0x80000002
  CArrayRectD rects;
  rects.Add(new CRectD(1, 1, 1, 1));
  EXPECT_EQ(Load(foreign, rects), 4u) << "only the header is consumed";
  EXPECT_EQ(rects.GetSize(), 0) << "the old elements are gone all the same";

  Bytes v2;
  Put32(v2, 2);
  PutDouble(v2, 9);
  PutDouble(v2, 9);
  CPointD p(1, 1);
  EXPECT_EQ(Load(v2, p), 4u);
  EXPECT_EQ(p.x, 1);
  EXPECT_EQ(p.y, 1) << "a foreign version leaves the point as it was";
  C2PointD seg(CPointD(5, 5), CPointD(6, 6));
  EXPECT_EQ(Load(v2, seg), 4u);
  EXPECT_EQ(seg.pt1.x, 5);
}

TEST(ArchiveConventions, HostileCountEndsInEndOfFileWithoutAHugeAllocation) {
  Bytes hostile = Cat({Header(0x7FFFFFFFFFFFFFFFull), PointBytes(1, 2)});
  CArrayPointD pts;
  try {
    Load(hostile, pts);
    FAIL() << "expected an archive exception";
  } catch (const CArchiveException& e) {
    EXPECT_EQ(e.m_cause, CArchiveException::endOfFile);
  }
  C4PointDArray quads;
  EXPECT_THROW(Load(hostile, quads), CArchiveException);
}

TEST(ArchiveConventions, C5PointDArrayStoresAndLoadsAsymmetrically) {
  C5PointDArray five;
  five.Add(new C5PointD(CPointD(1, 1), CPointD(2, 2), CPointD(3, 3), CPointD(4, 4), CPointD(5, 5)));
  const Bytes stored = Store(five);
  Bytes expected = Header(1);
  Put32(expected, 1);
  for (int i = 1; i <= 5; ++i) expected = Cat({expected, PointBytes(i, i)});
  EXPECT_EQ(stored, expected);

  // Loading skips a word first, so the count's low half (1) is read as the header and
  // its high half (0) as an old-form count: the array comes back empty.
  C5PointDArray loaded;
  loaded.Add(new C5PointD());
  EXPECT_EQ(Load(stored, loaded), 12u);
  EXPECT_EQ(loaded.GetSize(), 0);

  // A stream with the extra leading word loads.
  Bytes withWord;
  Put32(withWord, 0xDEADBEEF);
  withWord = Cat({withWord, stored});
  EXPECT_EQ(Load(withWord, loaded), withWord.size());
  ASSERT_EQ(loaded.GetSize(), 1);
  EXPECT_TRUE(*loaded.GetAt(0) == *five.GetAt(0));
}

TEST(ArchiveConventions, NullSlotsStoreAsDefaultElements) {
  CArrayRectD rects;
  rects.Add(nullptr);
  CArrayRectD loaded;
  const Bytes bytes = Store(rects);
  EXPECT_EQ(Load(bytes, loaded), bytes.size());
  ASSERT_EQ(loaded.GetSize(), 1);
  EXPECT_TRUE(*loaded.GetAt(0) == CRectD());
}

// Points load straight from the archive buffer while it holds a whole record, and
// through Serialize where a record straddles a refill: either way a foreign version
// consumes only its word and leaves the point default. Buffer sizes move the seams.
TEST(ArchiveConventions, PointArrayLoadsTheSameWhereverRecordsMeetTheBufferEnd) {
  constexpr int kPoints = 500;
  Bytes stream = Header(kPoints);
  for (int i = 0; i < kPoints; ++i) {
    if (i % 7 == 3) {
      Put32(stream, 2);  // a foreign version: only this word belongs to the element
    } else {
      Put32(stream, 1);
      PutDouble(stream, i);
      PutDouble(stream, -0.5 * i);
    }
  }
  for (int bufSize : {128, 131, 4096}) {
    SCOPED_TRACE(bufSize);
    CMemFile file(stream.data(), static_cast<UINT>(stream.size()));
    CArchive ar(&file, CArchive::load, bufSize);
    CArrayPointD points;
    points.Serialize(ar);
    EXPECT_EQ(ar.GetPosition(), stream.size());
    ASSERT_EQ(points.GetSize(), kPoints);
    for (int i = 0; i < kPoints; ++i) {
      const bool foreign = i % 7 == 3;
      ASSERT_EQ(points[i].x, foreign ? 0.0 : i) << i;
      ASSERT_EQ(points[i].y, foreign ? 0.0 : -0.5 * i) << i;
    }
  }
  // Cut inside the last record: end of file, the points before it kept.
  Bytes cut(stream.begin(), stream.end() - 3);
  CMemFile file(cut.data(), static_cast<UINT>(cut.size()));
  CArchive ar(&file, CArchive::load, 128);
  CArrayPointD points;
  try {
    points.Serialize(ar);
    ADD_FAILURE() << "a cut record loaded";
  } catch (const CArchiveException& e) {
    EXPECT_EQ(e.m_cause, CArchiveException::endOfFile);
  }
  EXPECT_EQ(points.GetSize(), kPoints - 1);
}

}  // namespace
