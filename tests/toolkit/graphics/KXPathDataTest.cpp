#include "kxcharts/toolkit/graphics/KXPathData.h"

#include <cfloat>
#include <cmath>
#include <iomanip>
#include <limits>
#include <numbers>
#include <sstream>

#include <gtest/gtest.h>

#include "kxcharts/toolkit/objects/KXObjectRect.h"

namespace kx {
namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

// The commands as they are held, one letter and its points each, every digit shown, for
// comparing paths (0 and -0 alike).
std::string Segments(const TKXPathData& P) {
  std::ostringstream S;
  S << std::setprecision(17);
  P.ForEachSegment([&](const TKXPathSegment& Seg) {
    S << "MLCZ"[Seg.Command];
    for (const TKXPathPoint& Pt : Seg.Points)
      S << ' ' << Pt.X + 0.0 << ',' << Pt.Y + 0.0;
    S << ';';
  });
  return S.str();
}

TOwned<TKXPathData> Path(std::string_view Text) {
  auto P = MakeOwned<TKXPathData>();
  P->SetPathString(Text);
  return P;
}

const char* const Star = "M350,75 L379,161 L469,161 L397,215 L423,301 L350,250 L277,301 "
                         "L303,215 L231,161 L321,161 Z";

// --- Reading ---

TEST(PathData, ReadsTheMoveLineCloseLanguageAndKeepsTheTextAsGiven) {
  const auto P = Path(Star);
  EXPECT_EQ(P->CommandCount(), 11u);
  EXPECT_EQ(P->GetBounds(), (TRectF{231, 75, 469, 301}));
  EXPECT_EQ(P->PathString(), Star);
  EXPECT_EQ(Path("M742,262.600006103516 L0.5,1")->GetBounds().Top, 1.0f);
}

TEST(PathData, EveryCommandFormReadsAsItsAbsoluteEquivalent) {
  struct Case {
    const char* Text;
    const char* Same;
  };
  const Case Cases[] = {
      {"M10,10 l5,0 v5 h-5 z", "M10,10 L15,10 L15,15 L10,15 Z"},
      {"M0,0 10,0 10,10", "M0,0 L10,0 L10,10"},        // numbers after M are lines
      {"m1,1 2,2 m1,0 1,1", "M1,1 L3,3 M4,3 L5,4"},    // relative throughout
      {"M0 0L1-1.5.5.5", "M0,0 L1,-1.5 L0.5,0.5"},     // packed numbers
      {"M1e1,+2E-1 L.5e+1,3", "M10,0.2 L5,3"},         // exponents and signs
      {"M0,0 H5 10 V3", "M0,0 L5,0 L10,0 L10,3"},      // repeated H
      {"M0,0 L5,5 Z L10,0", "M0,0 L5,5 Z M0,0 L10,0"}, // drawing after Z restarts
      {"M0,0 L5,5 Z Z", "M0,0 L5,5 Z"},                // a second Z adds nothing
      {"M0,0 c1,1 2,1 3,0 s2,-1 3,0", "M0,0 C1,1 2,1 3,0 C4,-1 5,-1 6,0"},
      {"M0,0 Q3,3 6,0 T12,0", "M0,0 C2,2 4,2 6,0 C8,-2 10,-2 12,0"},
      {"M0,0 A0,5 0 0,1 10,0", "M0,0 L10,0"}, // a radius of 0 is a line
      {"M0,0 A5,5 0 0,1 0,0", "M0,0"},        // an arc to its start is nothing
      {"M1e-400,0", "M0,0"},                  // too small to hold is 0
  };
  for (const Case& C : Cases)
    EXPECT_EQ(Segments(*Path(C.Text)), Segments(*Path(C.Same))) << C.Text;
}

TEST(PathData, EmptyAndBlankTextGiveTheEmptyPath) {
  for (const char* Text : {"", "   ", " ,\n\t "}) {
    const auto P = Path(Text);
    EXPECT_TRUE(P->IsEmpty()) << '"' << Text << '"';
    EXPECT_EQ(P->GetBounds(), TRectF{});
    EXPECT_FALSE(P->PointInPath(0, 0));
    EXPECT_TRUE(P->Flatten().empty());
  }
}

TEST(PathData, BadTextRaisesAnErrorNamingThePositionAndChangesNothing) {
  struct Case {
    std::string Text;
    size_t Position;
    const char* Reason;
  };
  // clang-format off
  const Case Cases[] = {
      {"M", 2, "a number was expected"}, {"L 1", 1, "must begin with a move command"},
      {"Z Z", 1, "must begin with a move command"}, {"M0,0 X1,1", 6, "unknown command 'X'"},
      {"M0,0 L1", 8, "a number was expected"}, {"M NaN,1", 3, "a number was expected"},
      {"M0,0 L inf,1", 8, "a number was expected"}, {"M1e309,0", 2, "out of range"},
      {"M0,0 L-1e400,0", 7, "out of range"}, {"M0,0 Z 5", 8, "a command letter was expected"},
      {"M0,0 A1,1 0 2,0 5,5", 13, "arc flag"}, {"M0,0 L1,1 #", 11, "unexpected character '#'"},
      {std::string("M0,0 \x01"), 6, "unexpected byte 0x01"},
      {"M0,0 L1,,", 10, "a number was expected"}};
  // clang-format on
  for (const Case& C : Cases) {
    const auto P = Path("M1,1 L2,2");
    int Changes = 0;
    P->SetOnChange([&](TObject*) { ++Changes; });
    try {
      P->SetPathString(C.Text);
      ADD_FAILURE() << "no error for " << C.Text;
    } catch (const EKXPathError& E) {
      EXPECT_EQ(E.Position(), C.Position) << C.Text;
      EXPECT_NE(E.Message().find("position " + std::to_string(C.Position)), std::string::npos);
      EXPECT_NE(E.Message().find(C.Reason), std::string::npos) << E.Message();
    }
    EXPECT_EQ(P->PathString(), "M1,1 L2,2");
    EXPECT_EQ(Changes, 0);
  }
}

TEST(PathData, HugeNumbersSurviveTransformsAndTheStoredForm) {
  const auto P = Path("M0,0 L1e308,1e308 L-1e308,5");
  P->Scale(10, 10); // overflows to infinity
  EXPECT_EQ(P->GetBounds().Right, FLT_MAX);
  EXPECT_FALSE(P->PointInPath(5, 5));
  const auto Reread = Path(P->PathString()); // infinities are written as the largest double
  EXPECT_EQ(Reread->GetBounds(), P->GetBounds());
  EXPECT_FALSE(P->Flatten().empty());
}

// --- The stored form ---

TEST(PathData, WrittenFormReadsBackToTheSamePath) {
  auto P = MakeOwned<TKXPathData>();
  P->Arc(10, 250, 33.3, 100, 7);
  P->Translate(0.1, -0.7);
  P->MoveTo(-0.0, 1e-7);
  P->LineTo(123456789.123, 2);
  EXPECT_EQ(Segments(*Path(P->PathString())), Segments(*P));
  EXPECT_EQ(P->PathString().find("-0,"), std::string::npos);
  EXPECT_EQ(Path("M0,0 L1,1")->PathString(), "M0,0 L1,1");
  auto Moved = Path("M0,0 L1,1");
  Moved->Translate(1, 0);
  EXPECT_EQ(Moved->PathString(), "M1,0 L2,1");
}

// --- Curves and bounds ---

TEST(PathData, BoundsMeasureCurvesAtTheirExtremes) {
  EXPECT_EQ(Path("M0,0 Q10,10 20,0")->GetBounds(), (TRectF{0, 0, 20, 5}));
  const TRectF Arc = Path("M0,0 A10,10 0 0,1 20,0")->GetBounds(); // over the top
  EXPECT_NEAR(Arc.Top, -10, 1e-4);
  EXPECT_NEAR(Arc.Bottom, 0, 1e-6);
  const TRectF Small = Path("M0,0 A1,1 0 0,1 20,0")->GetBounds(); // radius grows to reach
  EXPECT_NEAR(Small.Top, -10, 1e-4);
  const TRectF Below = Path("M0,0 A10,10 0 0,0 20,0")->GetBounds();
  EXPECT_NEAR(Below.Bottom, 10, 1e-4);
  const TRectF Large = Path("M0,0 A10,10 0 1,1 0,0.1")->GetBounds(); // nearly a circle
  EXPECT_NEAR(Large.Right - Large.Left, 20, 1e-3);
}

TEST(PathData, FlatteningStaysWithinTheTolerance) {
  auto P = MakeOwned<TKXPathData>();
  P->Arc(0, 360, 0, 100, 0);
  for (double Tolerance : {1.0, 0.25, 0.01}) {
    const auto Polygons = P->Flatten(Tolerance);
    ASSERT_EQ(Polygons.size(), 1u);
    EXPECT_TRUE(Polygons[0].Closed);
    const auto& Pts = Polygons[0].Points;
    EXPECT_LE(Pts.size(), 4u * 256);
    for (size_t I = 0; I < Pts.size(); ++I) {
      const TKXPathPoint& A = Pts[I];
      const TKXPathPoint& B = Pts[(I + 1) % Pts.size()];
      const TKXPathPoint Mid{(A.X + B.X) / 2, (A.Y + B.Y) / 2};
      // The chord's middle is the point furthest from the arc; 0.03 is the Bézier's own
      // departure from the circle at this radius.
      EXPECT_LE(100 - std::hypot(Mid.X, Mid.Y), Tolerance + 0.03);
    }
  }
  const auto Open = Path("M0,0 L5,5 M9,9 M1,1 L2,2 Z")->Flatten();
  ASSERT_EQ(Open.size(), 2u); // the lone move gives no polygon
  EXPECT_FALSE(Open[0].Closed);
  EXPECT_TRUE(Open[1].Closed);
}

// --- Hit tests ---

struct THit {
  double X, Y;
  bool Inside;
};

void ExpectHits(const TKXPathData& P, std::initializer_list<THit> Hits) {
  for (const THit& H : Hits)
    EXPECT_EQ(P.PointInPath(H.X, H.Y), H.Inside) << "(" << H.X << ", " << H.Y << ")";
}

TEST(PathData, PointInPathOnAConcaveFigure) {
  // A square with a notch cut from the left side.
  ExpectHits(*Path("M0,0 L10,0 L10,10 L0,10 L0,7 L7,7 L7,3 L0,3 Z"), {{5, 1, true},
                                                                      {3, 5, false},
                                                                      {8, 5, true},
                                                                      {5, 8.5, true},
                                                                      {-1, 5, false},
                                                                      {11, 5, false},
                                                                      {NaN, 5, false}});
  // A ray through a corner counts it once.
  ExpectHits(*Path("M5,0 L10,5 L5,10 L0,5 Z"), {{2, 5, true}, {-1, 5, false}, {5, 5, true}});
}

TEST(PathData, PointInPathCutsHolesWhateverTheDirectionOfTheInnerFigure) {
  for (const char* Text : {"M0,0 L10,0 L10,10 L0,10 Z M3,3 L7,3 L7,7 L3,7 Z",
                           "M0,0 L10,0 L10,10 L0,10 Z M3,3 L3,7 L7,7 L7,3 Z"}) {
    SCOPED_TRACE(Text);
    ExpectHits(*Path(Text), {{5, 5, false}, {1, 1, true}, {8, 5, true}, {11, 5, false}});
  }
  // Open figures are filled as if closed.
  ExpectHits(*Path("M0,0 L10,0 L10,10"), {{8, 2, true}, {2, 8, false}});
}

TEST(PathData, PointInPathFollowsCurves) {
  auto P = MakeOwned<TKXPathData>();
  P->Arc(0, 360, 50, 100, 0);
  for (double Angle = 0; Angle < 360; Angle += 23) {
    const double C = std::cos(Angle * std::numbers::pi / 180);
    const double S = std::sin(Angle * std::numbers::pi / 180);
    EXPECT_TRUE(P->PointInPath(99 * C, 99 * S)) << Angle;
    EXPECT_FALSE(P->PointInPath(101 * C, 101 * S)) << Angle;
    EXPECT_TRUE(P->PointInPath(51 * C, 51 * S)) << Angle;
    EXPECT_FALSE(P->PointInPath(49 * C, 49 * S)) << Angle;
  }
}

// --- Ring parts ---

TEST(PathData, ArcAddsRingPartsPieSlicesAndWholeRings) {
  struct Case {
    double Start, End, Inner, Outer, Offset;
    TRectF Bounds;
    std::initializer_list<THit> Hits;
  };
  const double D = std::sqrt(0.5);
  const Case Cases[] = {
      {0, 90, 50, 100, 0, {0, 0, 100, 100}, {{75 * D, 75 * D, true}, {25 * D, 25 * D, false}}},
      {0, 90, 0, 100, 0, {0, 0, 100, 100}, {{25 * D, 25 * D, true}, {-10, 10, false}}},
      {0, 90, 0, 100, 90, {-100, 0, 0, 100}, {{-50, 50, true}, {50, 50, false}}},
      {90, 0, 100, 50, 0, {0, 0, 100, 100}, {{75 * D, 75 * D, true}}}, // backwards, swapped
      {0, 360, 50, 100, 0, {-100, -100, 100, 100}, {{75, 0, true}, {0, 0, false}, {0, -75, true}}},
      {-30, 400, 0, 10, 0, {-10, -10, 10, 10}, {{0, 0, true}, {-5, 5, true}}}};
  for (const Case& C : Cases) {
    auto P = MakeOwned<TKXPathData>();
    P->Arc(C.Start, C.End, C.Inner, C.Outer, C.Offset);
    const TRectF B = P->GetBounds();
    SCOPED_TRACE(::testing::Message() << C.Start << ".." << C.End << " offset " << C.Offset);
    EXPECT_NEAR(B.Left, C.Bounds.Left, 1e-4);
    EXPECT_NEAR(B.Top, C.Bounds.Top, 1e-4);
    EXPECT_NEAR(B.Right, C.Bounds.Right, 1e-4);
    EXPECT_NEAR(B.Bottom, C.Bounds.Bottom, 1e-4);
    ExpectHits(*P, C.Hits);
  }
}

TEST(PathData, ArcOfNoSizeAddsNothingAndBadNumbersAreRefused) {
  auto P = MakeOwned<TKXPathData>();
  int Changes = 0;
  P->SetOnChange([&](TObject*) { ++Changes; });
  P->Arc(0, 90, 0, 0, 0);
  P->Arc(45, 45, 10, 100, 0);
  P->Arc(0, 90, -5, -1, 0);
  EXPECT_TRUE(P->IsEmpty());
  EXPECT_EQ(Changes, 0);
  EXPECT_THROW(P->Arc(0, NaN, 0, 10, 0), EInvalidOp);
  EXPECT_THROW(P->Arc(0, 90, 0, INFINITY, 0), EInvalidOp);
}

// --- Transforms ---

TEST(PathData, FitToRectPutsTheBoundsExactlyOnTheRectangle) {
  const TRectF Targets[] = {{0, 0, 1, 1},
                            {0.1f, 0.3f, 33.3f, 10.7f},
                            {-1e6f, 2, 1e6f, 2.5f},
                            {1234.567f, -89.1f, 1234.6f, 7e5f},
                            {10, 10, 10.000001f, 11}};
  for (const char* Text : {Star, "M0,0 L3,1 L1,2 Z", "M-5,0 L5,0 L0,0.001 Z"}) {
    for (const TRectF& R : Targets) {
      auto P = Path(Text);
      P->FitToRect(R);
      EXPECT_EQ(P->GetBounds(), R)
          << Text << " into " << R.Left << " " << R.Top << " " << R.Right << " " << R.Bottom;
    }
  }
}

TEST(PathData, FitToRectMirrorsIntoAnInvertedRectangleAndCentresAFlatPath) {
  auto P = Path("M0,0 L10,0 L10,5 Z");
  P->FitToRect({100, 0, 0, 50});
  EXPECT_EQ(P->GetBounds(), (TRectF{0, 0, 100, 50}));
  EXPECT_EQ(Segments(*P), "M 100,0;L 0,0;L 0,50;Z;");

  auto Flat = Path("M0,5 L10,5");
  Flat->FitToRect({0, 0, 100, 50});
  EXPECT_EQ(Flat->GetBounds(), (TRectF{0, 25, 100, 25}));
  EXPECT_THROW(Flat->FitToRect({0, 0, float(NaN), 1}), EInvalidOp);
}

TEST(PathData, MatricesComposeInTheOrderGiven) {
  const TKXMatrix M =
      KXMatrixMultiply(CreateTranslateKXMatrix(100, 100), CreateScaleKXMatrix(0.5, 2));
  EXPECT_EQ(M.Transform({0, 0}), (TKXPathPoint{50, 200})); // translated, then scaled
  EXPECT_EQ(KXMatrixMultiply(M, TKXMatrix{}), M);
  EXPECT_EQ(CreateRotateKXMatrix(90).Transform({1, 0}), (TKXPathPoint{0, 1}));
  EXPECT_EQ(CreateRotateKXMatrix(-450).Transform({1, 0}), (TKXPathPoint{0, -1}));
  const TKXPathPoint R = CreateRotateKXMatrix(45).Transform({1, 0});
  EXPECT_NEAR(R.X, std::sqrt(0.5), 1e-15);
  EXPECT_NEAR(R.Y, std::sqrt(0.5), 1e-15);

  auto A = Path(Star), B = Path(Star);
  A->ApplyMatrix(M);
  B->Translate(100, 100);
  B->Scale(0.5, 2);
  EXPECT_EQ(Segments(*A), Segments(*B));
  EXPECT_THROW(A->ApplyMatrix(CreateScaleKXMatrix(NaN, 1)), EInvalidOp);
  EXPECT_THROW(A->Translate(INFINITY, 0), EInvalidOp);
}

// --- Building, events and Assign ---

TEST(PathData, BuildingKeepsEveryFigureStartedByAMove) {
  auto P = MakeOwned<TKXPathData>();
  P->LineTo(1, 1); // no current point: starts a figure
  P->LineTo(5, 1);
  P->ClosePath();
  P->ClosePath();
  P->CurveTo(2, 2, 3, 3, 4, 4); // after a close: starts at the figure's beginning
  EXPECT_EQ(Segments(*P), "M 1,1;L 5,1;Z;M 1,1;C 2,2 3,3 4,4;");
  EXPECT_THROW(P->LineTo(NaN, 0), EInvalidOp);
  EXPECT_THROW(P->MoveTo(0, -INFINITY), EInvalidOp);
}

TEST(PathData, OnChangeFiresOncePerRealChange) {
  auto P = MakeOwned<TKXPathData>();
  int Changes = 0;
  P->SetOnChange([&](TObject* Sender) {
    EXPECT_EQ(Sender, P.get());
    ++Changes;
  });
  const auto Step = [&](auto&& Action) {
    Changes = 0;
    Action();
    return Changes;
  };
  EXPECT_EQ(Step([&] { P->SetPathString("M0,0 L1,1"); }), 1);
  EXPECT_EQ(Step([&] { P->SetPathString("M0 0 L1 1"); }), 0); // same figures
  EXPECT_EQ(P->PathString(), "M0 0 L1 1");                    // but the text as given
  EXPECT_EQ(Step([&] { P->Translate(0, 0); }), 0);
  EXPECT_EQ(Step([&] { P->Scale(1, 1); }), 0);
  EXPECT_EQ(Step([&] { P->Translate(1, 0); }), 1);
  EXPECT_EQ(Step([&] { P->ClosePath(); }), 1);
  EXPECT_EQ(Step([&] { P->ClosePath(); }), 0);
  EXPECT_EQ(Step([&] {
              P->BeginUpdate();
              P->BeginUpdate();
              P->LineTo(3, 3);
              P->Scale(2, 2);
              P->EndUpdate();
              EXPECT_EQ(Changes, 0);
              P->EndUpdate();
            }),
            1);
  EXPECT_EQ(Step([&] {
              P->BeginUpdate();
              P->EndUpdate();
            }),
            0);
  EXPECT_THROW(P->EndUpdate(), EInvalidOp);
  EXPECT_EQ(Step([&] { P->Clear(); }), 1);
  EXPECT_EQ(Step([&] { P->Clear(); }), 0);
}

TEST(PathData, AssignCopiesFiguresAndTextAndRefusesStrangers) {
  auto A = Path(Star);
  auto B = MakeOwned<TKXPathData>();
  int Changes = 0;
  B->SetOnChange([&](TObject*) { ++Changes; });
  B->Assign(A.get());
  EXPECT_EQ(Segments(*B), Segments(*A));
  EXPECT_EQ(B->PathString(), Star);
  B->Assign(A.get());
  B->Assign(B.get());
  EXPECT_EQ(Changes, 1);

  auto Stranger = MakeOwned<TKXPosition>();
  try {
    B->Assign(Stranger.get());
    FAIL() << "no exception";
  } catch (const EConvertError& E) {
    EXPECT_EQ(E.Message(), "Cannot assign a TKXPosition to a TKXPathData");
  }
}

} // namespace
} // namespace kx
