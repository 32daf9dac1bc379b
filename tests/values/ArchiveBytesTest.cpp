// Archive bytes of the float geometry, numeric arrays, pairs and sets against
// hand-built vectors, each also loaded back; CNArrayL's older form and its refusal of
// the newer header; hostile counts ending in end-of-file.
#include <corlith/test/Bytes.h>
#include <corlith/values/Values.h>

#include <gtest/gtest.h>

namespace {

using namespace corlith::test;

// The version word 1 that most value classes store first.
Bytes V1() { return Dwords({1}); }
// A float record: the version word, then its fields.
Bytes V1Floats(std::initializer_list<float> fields) { return Cat({V1(), Floats(fields)}); }

// Stores the object, compares with the vector, then loads the vector into a fresh
// object, which must consume every byte and store the same bytes again.
template <class T>
void Check(const char* name, T value, const Bytes& expected) {
  SCOPED_TRACE(name);
  EXPECT_EQ(Store(value), expected);
  T loaded;
  EXPECT_EQ(Load(expected, loaded), expected.size());
  EXPECT_EQ(Store(loaded), expected);
}

// The cause of the archive exception loading a fresh T from bytes throws, or -1.
template <class T>
int LoadCause(const Bytes& bytes) {
  T value;
  return ArchiveCause([&] { Load(bytes, value); });
}

TEST(ArchiveBytes, FloatGeometry) {
  Check("CPointF", CPointF(1.5f, -2), V1Floats({1.5f, -2}));
  Check("CFPoint", CFPoint(1.5f, -2.0f), V1Floats({1.5f, -2}));
  Check("CRectF", CRectF(1, 2, 3, 4), V1Floats({1, 2, 3, 4}));
  Check("CRectFL", CRectFL(1, 2, 3, 4), V1Floats({1, 2, 3, 4}));
  Check("CFRect", CFRect(1, 4, 3, 2), V1Floats({1, 4, 3, 2}));
  Check("C2FPoints", C2FPoints(CFPoint(1.0f, 2.0f), CFPoint(3.0f, 4.0f)),
        Cat({V1(), V1Floats({1, 2}), V1Floats({3, 4})}));
  Check("CCircleF", CCircleF(CPointF(1, 2), 3), Cat({V1(), V1Floats({1, 2}), Floats({3})}));

  CArrayRectF rects;
  rects.Add(new CRectF(1, 2, 3, 4));
  Check("CArrayRectF", rects, Cat({Header(1), V1Floats({1, 2, 3, 4})}));
  CFRectArray frects;
  frects.Add(new CFRect(1, 2, 3, 4));
  frects.Add(new CFRect(5, 6, 7, 8));
  Check("CFRectArray", frects, Cat({Header(2), V1Floats({1, 2, 3, 4}), V1Floats({5, 6, 7, 8})}));
  CRectFLArray lrects;
  Check("CRectFLArray empty", lrects, Header(0));
  C2FPointsArray pairs;
  pairs.Add(new C2FPoints(CFPoint(1.0f, 2.0f), CFPoint(3.0f, 4.0f)));
  Check("C2FPointsArray", pairs, Cat({Header(1), V1(), V1Floats({1, 2}), V1Floats({3, 4})}));
  CArrayPointF points;
  points.Add(CPointF(1, 2));
  Check("CArrayPointF (framework count form)", points, Cat({Bytes{1, 0}, V1Floats({1, 2})}));
}

TEST(ArchiveBytes, NumericArrays) {
  CArrayD d;
  d.Add(1.5);
  Bytes bd = Header(1);
  PutDouble(bd, 1.5);
  Check("CArrayD", d, bd);
  CArrayN n;
  n.Add(-1);
  n.Add(2);
  Check("CArrayN", n, Cat({Header(2), Dwords({0xFFFFFFFFu, 2})}));
  CArrayB b;
  b.Add(TRUE);
  Check("CArrayB", b, Cat({Header(1), Dwords({1})}));
  CNArrayL l;
  l.Add(7);
  l.Add(-2);
  Check("CNArrayL older form", l, Dwords({1, 2, 7, 0xFFFFFFFEu}));
  Check("CNArrayL empty", CNArrayL(), Dwords({1, 0}));

  CArrayArrayN nn;
  nn.Add(n);
  Check("CArrayArrayN", nn, Cat({Header(1), Header(2), Dwords({0xFFFFFFFFu, 2})}));
  CArrayArrayD dd;
  dd.Add(d);
  Check("CArrayArrayD", dd, Cat({Header(1), bd}));
  CArrayArrayB bb;
  bb.Add(b);
  Check("CArrayArrayB", bb, Cat({Header(1), Header(1), Dwords({1})}));
  CExPtrArrayArrayN pn;
  pn.Add(new CArrayN(n));
  Check("CExPtrArrayArrayN", pn, Cat({Header(1), Header(2), Dwords({0xFFFFFFFFu, 2})}));

  CDWordArrayArray dw;
  auto* inner = new CDWordArray;
  inner->Add(5);
  dw.Add(inner);
  const Bytes innerBytes = Cat({Bytes{1, 0}, Dwords({5})});  // the framework's own form
  Check("CDWordArrayArray", dw, Cat({Header(1), innerBytes}));
  CDWordArrayArrayArray dww;
  dww.Add(new CDWordArrayArray(dw));
  Check("CDWordArrayArrayArray", dww, Cat({Header(1), Header(1), innerBytes}));
  CDWordArraySet set;
  set.Add(new CDWordArray(*inner));
  Check("CDWordArraySet", set, Cat({Header(1), innerBytes}));
}

TEST(ArchiveBytes, Pairs) {
  Check("CIntPair", CIntPair(3, -4), Dwords({1, 3, 0xFFFFFFFCu}));
  Bytes bid = Dwords({1, 3});
  PutDouble(bid, 0.25);
  Check("CIntDoublePair", CIntDoublePair(3, 0.25), bid);
  Check("CIntStringPair", CIntStringPair(3, "ab"), Cat({Dwords({1, 3}), ShortString("ab")}));
  Check("CStringPair", CStringPair("a", "bc"), Cat({V1(), ShortString("a"), ShortString("bc")}));
  CStringArray list;
  list.Add(CString("x"));
  list.Add(CString("yz"));
  Check("CStringStringArrayPair", CStringStringArrayPair("n", list),
        Cat({V1(), ShortString("n"), Bytes{2, 0}, ShortString("x"), ShortString("yz")}));
  Bytes bdw = V1();
  Put64(bdw, 0x1122334455667788ull);
  Put64(bdw, 2);
  Check("CDWordPair", CDWordPair(0x1122334455667788ull, 2), bdw);

  CIntPairArray ip;
  ip.AddElement(1, 2);
  Check("CIntPairArray", ip, Cat({Header(1), Dwords({1, 1, 2})}));
  CIntPairArrayArray ipp;
  ipp.Add(new CIntPairArray(ip));
  Check("CIntPairArrayArray", ipp, Cat({Header(1), Header(1), Dwords({1, 1, 2})}));
  CIntDoublePairArray idp;
  idp.Add(new CIntDoublePair(3, 0.25));
  Check("CIntDoublePairArray", idp, Cat({Header(1), bid}));
  CIntStringPairArray isp;
  isp.AddElement(3, "ab");
  Check("CIntStringPairArray", isp, Cat({Header(1), Dwords({1, 3}), ShortString("ab")}));
  CStringPairArray sp;
  sp.Add(new CStringPair("a", "bc"));
  const Bytes spBytes = Cat({V1(), ShortString("a"), ShortString("bc")});
  Check("CStringPairArray", sp, Cat({Header(1), spBytes}));
  CStringPairArrayArray spp;
  spp.Add(new CStringPairArray(sp));
  Check("CStringPairArrayArray", spp, Cat({Header(1), Header(1), spBytes}));
  CStringStringArrayPairArray ssp;
  ssp.Add(new CStringStringArrayPair("n", list));
  Check("CStringStringArrayPairArray", ssp,
        Cat({Header(1), V1(), ShortString("n"), Bytes{2, 0}, ShortString("x"), ShortString("yz")}));
  CStringPairSet sset;
  sset.Add(new CStringPair("a", "bc"));
  Check("CStringPairSet", sset, Cat({Header(1), spBytes}));
  CDWordPairSet dset;
  dset.Add(CDWordPair(0x1122334455667788ull, 2));
  Check("CDWordPairSet", dset, Cat({Header(1), bdw}));
}

TEST(ArchiveBytes, NArrayLRefusesTheNewerHeaderAndBadCounts) {
  struct Row {
    const char* name;
    Bytes bytes;
    std::size_t consumed;
  };
  for (const Row& row :
       {Row{"newer header", Dwords({0x80000001u, 1, 0, 5}), 4}, Row{"version 2", Dwords({2, 1, 5}), 4},
        Row{"zero count", Dwords({1, 0, 5}), 8}, Row{"negative count", Dwords({1, 0xFFFFFFFFu, 5}), 8}}) {
    SCOPED_TRACE(row.name);
    CNArrayL l;
    l.Add(42);
    EXPECT_EQ(Load(row.bytes, l), row.consumed);
    EXPECT_EQ(l.GetSize(), 0) << "emptied first";
  }
  CNArrayL hostile;
  EXPECT_THROW(Load(Dwords({1, 0x7FFFFFFFu, 5, 6}), hostile), CArchiveException);
  EXPECT_EQ(hostile.GetSize(), 2) << "what was there was read";
}

TEST(ArchiveBytes, HostileCountsEndInEndOfFile) {
  const Bytes bytes = Cat({Header(0x7FFFFFFFFFFFull), Dwords({1, 2, 3})});
  EXPECT_EQ(LoadCause<CArrayN>(bytes), CArchiveException::endOfFile) << "CArrayN";
  EXPECT_EQ(LoadCause<CArrayD>(bytes), CArchiveException::endOfFile) << "CArrayD";
  EXPECT_EQ(LoadCause<CIntPairArray>(bytes), CArchiveException::endOfFile) << "CIntPairArray";
  EXPECT_EQ(LoadCause<CDWordPairSet>(bytes), CArchiveException::endOfFile) << "CDWordPairSet";
  EXPECT_EQ(LoadCause<CDWordArrayArray>(bytes), CArchiveException::endOfFile) << "CDWordArrayArray";
  EXPECT_EQ(LoadCause<CArrayArrayD>(bytes), CArchiveException::endOfFile) << "CArrayArrayD";
}

}  // namespace
