#include "kxcharts/toolkit/graphics/KXPathData.h"

#include <algorithm>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <numbers>

namespace kx {

namespace {

constexpr double Pi = std::numbers::pi;

double DegToRad(double Degrees) {
  return Degrees * Pi / 180.0;
}

bool AllFinite(std::initializer_list<double> Values) {
  for (double V : Values)
    if (!std::isfinite(V)) return false;
  return true;
}

void RequireFinite(std::initializer_list<double> Values, const char* Operation) {
  if (!AllFinite(Values))
    throw EInvalidOp(std::string(Operation) + ": path coordinates must be finite numbers");
}

} // namespace

// --- Matrices ---

TKXMatrix CreateTranslateKXMatrix(double DX, double DY) {
  TKXMatrix M;
  M.M31 = DX;
  M.M32 = DY;
  return M;
}

TKXMatrix CreateScaleKXMatrix(double SX, double SY) {
  TKXMatrix M;
  M.M11 = SX;
  M.M22 = SY;
  return M;
}

TKXMatrix CreateRotateKXMatrix(double Degrees) {
  // Quarter turns are exact, so a rotated rectangle keeps integral corners.
  const double Turns = Degrees / 90.0;
  double C, S;
  if (Turns == std::floor(Turns) && std::isfinite(Turns)) {
    static constexpr double Cos[] = {1, 0, -1, 0}, Sin[] = {0, 1, 0, -1};
    const int Q = static_cast<int>(std::fmod(Turns, 4.0) + 4) % 4;
    C = Cos[Q];
    S = Sin[Q];
  } else {
    C = std::cos(DegToRad(Degrees));
    S = std::sin(DegToRad(Degrees));
  }
  TKXMatrix M;
  M.M11 = C;
  M.M12 = S;
  M.M21 = -S;
  M.M22 = C;
  return M;
}

TKXMatrix KXMatrixMultiply(const TKXMatrix& A, const TKXMatrix& B) {
  TKXMatrix M;
  M.M11 = A.M11 * B.M11 + A.M12 * B.M21;
  M.M12 = A.M11 * B.M12 + A.M12 * B.M22;
  M.M21 = A.M21 * B.M11 + A.M22 * B.M21;
  M.M22 = A.M21 * B.M12 + A.M22 * B.M22;
  M.M31 = A.M31 * B.M11 + A.M32 * B.M21 + B.M31;
  M.M32 = A.M31 * B.M12 + A.M32 * B.M22 + B.M32;
  return M;
}

// --- Figures under construction ---

namespace {

// The commands and points of a path, with the figure rules that both the reader and the
// building operations keep: every figure starts with a move, a close directly after a
// close (or before any figure) is dropped, and drawing after a close starts a new figure
// at the point where the closed one began.
struct TFigureBuilder {
  std::vector<TKXPathCommand>& Commands;
  std::vector<TKXPathPoint>& Points;

  bool HasCurrent() const { return !Commands.empty(); }
  bool AfterClose() const { return HasCurrent() && Commands.back() == pcClose; }

  TKXPathPoint FigureStart() const {
    size_t P = Points.size();
    for (size_t C = Commands.size(); C-- > 0;) {
      const TKXPathCommand Cmd = Commands[C];
      P -= Cmd == pcCurveTo ? 3 : Cmd == pcClose ? 0 : 1;
      if (Cmd == pcMoveTo) return Points[P];
    }
    return {};
  }

  TKXPathPoint Current() const {
    if (!HasCurrent()) return {};
    if (AfterClose()) return FigureStart();
    return Points.back();
  }

  void MoveTo(TKXPathPoint P) {
    Commands.push_back(pcMoveTo);
    Points.push_back(P);
  }
  void LineTo(TKXPathPoint P) {
    if (!HasCurrent()) return MoveTo(P);
    if (AfterClose()) MoveTo(FigureStart());
    Commands.push_back(pcLineTo);
    Points.push_back(P);
  }
  void CurveTo(TKXPathPoint C1, TKXPathPoint C2, TKXPathPoint P) {
    if (!HasCurrent())
      MoveTo(C1);
    else if (AfterClose())
      MoveTo(FigureStart());
    Commands.push_back(pcCurveTo);
    Points.insert(Points.end(), {C1, C2, P});
  }
  void Close() {
    if (HasCurrent() && !AfterClose()) Commands.push_back(pcClose);
  }

  // A circular or elliptical arc about the centre, from angle A0 to A1 (radians), of
  // radii RX and RY, the ellipse turned by Phi; in pieces of at most a quarter turn,
  // ending exactly at End when given.
  void ArcPieces(TKXPathPoint Center, double RX, double RY, double Phi, double A0, double A1,
                 const TKXPathPoint* End) {
    const double CosPhi = std::cos(Phi), SinPhi = std::sin(Phi);
    const auto Map = [&](double U, double V) {
      return TKXPathPoint{Center.X + RX * U * CosPhi - RY * V * SinPhi,
                          Center.Y + RX * U * SinPhi + RY * V * CosPhi};
    };
    const double Sweep = A1 - A0;
    const int N = std::max(1, static_cast<int>(std::ceil(std::abs(Sweep) / (Pi / 2) - 1e-9)));
    const double Step = Sweep / N;
    const double K = 4.0 / 3.0 * std::tan(Step / 4);
    for (int I = 0; I < N; ++I) {
      const double T0 = A0 + Step * I, T1 = (I + 1 == N) ? A1 : A0 + Step * (I + 1);
      const double C0 = std::cos(T0), S0 = std::sin(T0), C1 = std::cos(T1), S1 = std::sin(T1);
      TKXPathPoint P = Map(C1, S1);
      if (End && I + 1 == N) P = *End;
      CurveTo(Map(C0 - K * S0, S0 + K * C0), Map(C1 + K * S1, S1 - K * C1), P);
    }
  }

  // The elliptical arc of path text, from the current point to P.
  void SvgArc(double RX, double RY, double AngleDeg, bool LargeArc, bool Sweep, TKXPathPoint P) {
    const TKXPathPoint P0 = Current();
    if (P0 == P) return;
    RX = std::abs(RX);
    RY = std::abs(RY);
    if (RX == 0 || RY == 0) return LineTo(P);
    const double Phi = DegToRad(std::fmod(AngleDeg, 360.0));
    const double CosPhi = std::cos(Phi), SinPhi = std::sin(Phi);
    const double DX2 = (P0.X - P.X) / 2, DY2 = (P0.Y - P.Y) / 2;
    const double X1 = CosPhi * DX2 + SinPhi * DY2, Y1 = -SinPhi * DX2 + CosPhi * DY2;
    // Radii too small to reach the end point grow until they just do.
    const double Lambda = (X1 * X1) / (RX * RX) + (Y1 * Y1) / (RY * RY);
    if (Lambda > 1) {
      RX *= std::sqrt(Lambda);
      RY *= std::sqrt(Lambda);
    }
    const double RX2 = RX * RX, RY2 = RY * RY;
    const double Den = RX2 * Y1 * Y1 + RY2 * X1 * X1;
    double Coef = std::sqrt(std::max(0.0, (RX2 * RY2 - Den) / Den));
    if (LargeArc == Sweep) Coef = -Coef;
    const double CXp = Coef * RX * Y1 / RY, CYp = -Coef * RY * X1 / RX;
    const TKXPathPoint Center{CosPhi * CXp - SinPhi * CYp + (P0.X + P.X) / 2,
                              SinPhi * CXp + CosPhi * CYp + (P0.Y + P.Y) / 2};
    const double A0 = std::atan2((Y1 - CYp) / RY, (X1 - CXp) / RX);
    double Delta = std::atan2((-Y1 - CYp) / RY, (-X1 - CXp) / RX) - A0;
    if (Sweep && Delta < 0) Delta += 2 * Pi;
    if (!Sweep && Delta > 0) Delta -= 2 * Pi;
    // Coordinates near the end of the double range overflow on the way; a straight line
    // is the honest answer then.
    if (!AllFinite({Center.X, Center.Y, RX, RY, A0, Delta})) return LineTo(P);
    ArcPieces(Center, RX, RY, Phi, A0, A0 + Delta, &P);
  }
};

// --- Reading path text ---

bool IsSeparator(char C) {
  return C == ' ' || C == '\t' || C == '\n' || C == '\r' || C == '\f' || C == '\v' || C == ',';
}
bool IsDigit(char C) {
  return C >= '0' && C <= '9';
}

class TPathReader {
public:
  TPathReader(std::string_view Text, TFigureBuilder& Out) : S(Text), Out(Out) {}

  void Read() {
    SkipSeparators();
    if (I == S.size()) return;
    if (S[I] != 'M' && S[I] != 'm') Fail(I, "the path must begin with a move command (M)");
    char Command = 0;
    while (true) {
      SkipSeparators();
      if (I == S.size()) break;
      const char C = S[I];
      if (IsNumberStart(C)) {
        if (Command == 0 || Command == 'Z' || Command == 'z')
          Fail(I, "a command letter was expected");
        // More numbers repeat the command; after a move they draw lines.
        if (Command == 'M') Command = 'L';
        if (Command == 'm') Command = 'l';
      } else if ((C >= 'A' && C <= 'Z') || (C >= 'a' && C <= 'z')) {
        if (std::string_view("MmLlHhVvCcSsQqTtAaZz").find(C) == std::string_view::npos)
          Fail(I, std::string("unknown command '") + C + "'");
        Command = C;
        ++I;
      } else {
        Fail(I, DescribeChar(C));
      }
      Execute(Command);
    }
  }

private:
  [[noreturn]] void Fail(size_t At, const std::string& Reason) const {
    throw EKXPathError(At + 1, Reason);
  }

  static std::string DescribeChar(char C) {
    const auto U = static_cast<unsigned char>(C);
    if (U >= 0x20 && U < 0x7F) return std::string("unexpected character '") + C + "'";
    static constexpr char Hex[] = "0123456789ABCDEF";
    return std::string("unexpected byte 0x") + Hex[U >> 4] + Hex[U & 15];
  }

  static bool IsNumberStart(char C) { return IsDigit(C) || C == '+' || C == '-' || C == '.'; }

  void SkipSeparators() {
    while (I < S.size() && IsSeparator(S[I]))
      ++I;
  }

  double Number() {
    SkipSeparators();
    const size_t Start = I;
    if (I < S.size() && (S[I] == '+' || S[I] == '-')) ++I;
    // Digits before the first significant one decide, with the exponent, whether a number
    // that does not fit a double is too large or merely too small.
    size_t Digits = 0, IntDigits = 0, FracZeros = 0;
    bool Significant = false;
    while (I < S.size() && IsDigit(S[I])) {
      Significant = Significant || S[I] != '0';
      if (Significant) ++IntDigits;
      ++Digits;
      ++I;
    }
    if (I < S.size() && S[I] == '.') {
      ++I;
      while (I < S.size() && IsDigit(S[I])) {
        Significant = Significant || S[I] != '0';
        if (!Significant) ++FracZeros;
        ++Digits;
        ++I;
      }
    }
    if (Digits == 0) Fail(Start, "a number was expected");
    long long Exponent = 0;
    if (I < S.size() && (S[I] == 'e' || S[I] == 'E')) {
      size_t J = I + 1;
      bool Negative = false;
      if (J < S.size() && (S[J] == '+' || S[J] == '-')) Negative = S[J++] == '-';
      if (J < S.size() && IsDigit(S[J])) { // else the 'e' is not part of the number
        while (J < S.size() && IsDigit(S[J])) {
          Exponent = std::min(Exponent * 10 + (S[J] - '0'), 1000000LL);
          ++J;
        }
        if (Negative) Exponent = -Exponent;
        I = J;
      }
    }
    double Value = 0;
    const char* First = S.data() + Start + (S[Start] == '+' ? 1 : 0);
    const auto [Ptr, Err] = std::from_chars(First, S.data() + I, Value);
    if (Err == std::errc::result_out_of_range) {
      const long long Magnitude =
          (IntDigits > 0 ? static_cast<long long>(IntDigits) : -static_cast<long long>(FracZeros)) +
          Exponent;
      if (Magnitude > 0) Fail(Start, "the number is out of range");
      Value = 0;
    } else if (Err != std::errc() || Ptr != S.data() + I || !std::isfinite(Value)) {
      Fail(Start, "the number is out of range");
    }
    return Value;
  }

  bool Flag() {
    SkipSeparators();
    if (I < S.size() && (S[I] == '0' || S[I] == '1')) return S[I++] == '1';
    Fail(I, "an arc flag (0 or 1) was expected");
  }

  TKXPathPoint Pair(bool Relative, TKXPathPoint From) {
    const double X = Number();
    const double Y = Number();
    return Relative ? TKXPathPoint{From.X + X, From.Y + Y} : TKXPathPoint{X, Y};
  }

  void Execute(char Command) {
    const bool Rel = Command >= 'a' && Command <= 'z';
    const char Upper = Rel ? static_cast<char>(Command - 'a' + 'A') : Command;
    const TKXPathPoint Cur = Out.Current();
    char Kind = 0; // what the command leaves for the mirroring of S and T
    switch (Upper) {
    case 'M':
      Out.MoveTo(Pair(Rel, Cur));
      break;
    case 'L':
      Out.LineTo(Pair(Rel, Cur));
      break;
    case 'H': {
      const double X = Number();
      Out.LineTo({Rel ? Cur.X + X : X, Cur.Y});
      break;
    }
    case 'V': {
      const double Y = Number();
      Out.LineTo({Cur.X, Rel ? Cur.Y + Y : Y});
      break;
    }
    case 'C': {
      const TKXPathPoint C1 = Pair(Rel, Cur), C2 = Pair(Rel, Cur), P = Pair(Rel, Cur);
      Out.CurveTo(C1, C2, P);
      LastControl = C2;
      Kind = 'C';
      break;
    }
    case 'S': {
      const TKXPathPoint C1 = LastKind == 'C' ? Mirror(LastControl, Cur) : Cur;
      const TKXPathPoint C2 = Pair(Rel, Cur), P = Pair(Rel, Cur);
      Out.CurveTo(C1, C2, P);
      LastControl = C2;
      Kind = 'C';
      break;
    }
    case 'Q':
    case 'T': {
      const TKXPathPoint Q = Upper == 'Q'      ? Pair(Rel, Cur)
                             : LastKind == 'Q' ? Mirror(LastControl, Cur)
                                               : Cur;
      const TKXPathPoint P = Pair(Rel, Cur);
      // A quadratic curve is a cubic one with its control points two thirds of the way
      // from the ends to the quadratic control point.
      Out.CurveTo({Cur.X + 2.0 / 3.0 * (Q.X - Cur.X), Cur.Y + 2.0 / 3.0 * (Q.Y - Cur.Y)},
                  {P.X + 2.0 / 3.0 * (Q.X - P.X), P.Y + 2.0 / 3.0 * (Q.Y - P.Y)}, P);
      LastControl = Q;
      Kind = 'Q';
      break;
    }
    case 'A': {
      const double RX = Number(), RY = Number(), Angle = Number();
      const bool Large = Flag(), Sweep = Flag();
      Out.SvgArc(RX, RY, Angle, Large, Sweep, Pair(Rel, Cur));
      break;
    }
    case 'Z':
      Out.Close();
      break;
    }
    LastKind = Kind;
  }

  static TKXPathPoint Mirror(TKXPathPoint Control, TKXPathPoint About) {
    return {2 * About.X - Control.X, 2 * About.Y - Control.Y};
  }

  std::string_view S;
  TFigureBuilder& Out;
  size_t I = 0;
  TKXPathPoint LastControl;
  char LastKind = 0;
};

// --- Writing path text ---

void AppendNumber(std::string& Out, double V) {
  if (std::isnan(V)) V = 0;
  if (V == 0) V = 0; // no "-0"
  V = std::clamp(V, -DBL_MAX, DBL_MAX);
  char Buffer[32];
  const auto [Ptr, Err] = std::to_chars(Buffer, Buffer + sizeof Buffer, V);
  Out.append(Buffer, Err == std::errc() ? Ptr : Buffer);
}

void AppendPoint(std::string& Out, const TKXPathPoint& P) {
  AppendNumber(Out, P.X);
  Out += ',';
  AppendNumber(Out, P.Y);
}

// --- Curves ---

TKXPathPoint CubicAt(const TKXPathPoint* P, double T) {
  const double U = 1 - T;
  const double A = U * U * U, B = 3 * U * U * T, C = 3 * U * T * T, D = T * T * T;
  return {A * P[0].X + B * P[1].X + C * P[2].X + D * P[3].X,
          A * P[0].Y + B * P[1].Y + C * P[2].Y + D * P[3].Y};
}

// The parameters in (0, 1) where one coordinate of the cubic has a turning point.
int CubicExtremes(double P0, double P1, double P2, double P3, double (&T)[2]) {
  // The derivative is 3 (a t^2 + 2 b t + c) with:
  const double A = -P0 + 3 * P1 - 3 * P2 + P3;
  const double B = P0 - 2 * P1 + P2;
  const double C = P1 - P0;
  int N = 0;
  const auto Keep = [&](double V) {
    if (V > 0 && V < 1) T[N++] = V;
  };
  if (std::abs(A) < 1e-12 * (std::abs(B) + std::abs(C) + 1e-300)) {
    if (B != 0) Keep(-C / (2 * B));
    return N;
  }
  const double Disc = B * B - A * C;
  if (Disc < 0) return 0;
  const double Root = std::sqrt(Disc);
  Keep((-B + Root) / A);
  Keep((-B - Root) / A);
  return N;
}

int CurvePieces(const TKXPathPoint* P, double Tolerance) {
  // Cutting a cubic into n equal steps strays at most 3/4 * M / n^2 from it, M being the
  // larger second difference of its control points.
  const double M1 = std::hypot(P[0].X - 2 * P[1].X + P[2].X, P[0].Y - 2 * P[1].Y + P[2].Y);
  const double M2 = std::hypot(P[1].X - 2 * P[2].X + P[3].X, P[1].Y - 2 * P[2].Y + P[3].Y);
  const double N = std::ceil(std::sqrt(0.75 * std::max(M1, M2) / Tolerance));
  if (std::isnan(N)) return 1;
  return static_cast<int>(std::clamp(N, 1.0, 256.0));
}

} // namespace

// --- EKXPathError ---

EKXPathError::EKXPathError(size_t Position, const std::string& Reason)
    : EConvertError("Invalid path data at position " + std::to_string(Position) + ": " + Reason),
      FPosition(Position) {}

// --- TKXPathData: stored form ---

std::string TKXPathData::PathString() const {
  if (FText) return *FText;
  std::string Out;
  Out.reserve(FPoints.size() * 12 + FCommands.size() * 2);
  ForEachSegment([&](const TKXPathSegment& S) {
    if (!Out.empty()) Out += ' ';
    static constexpr char Letters[] = {'M', 'L', 'C', 'Z'};
    Out += Letters[S.Command];
    for (size_t I = 0; I < S.Points.size(); ++I) {
      if (I > 0) Out += ' ';
      AppendPoint(Out, S.Points[I]);
    }
  });
  return Out;
}

void TKXPathData::SetPathString(std::string_view Value) {
  std::vector<TKXPathCommand> Commands;
  std::vector<TKXPathPoint> Points;
  TFigureBuilder Builder{Commands, Points};
  TPathReader(Value, Builder).Read();
  FText = std::string(Value);
  if (Commands == FCommands && Points == FPoints) return;
  FCommands.swap(Commands);
  FPoints.swap(Points);
  Changed();
}

// --- TKXPathData: updates and events ---

void TKXPathData::BeginUpdate() {
  ++FUpdateCount;
}

void TKXPathData::EndUpdate() {
  if (FUpdateCount == 0) throw EInvalidOp("TKXPathData.EndUpdate without BeginUpdate");
  if (--FUpdateCount == 0 && FChangedInUpdate) {
    FChangedInUpdate = false;
    Changed();
  }
}

void TKXPathData::Changed() {
  if (FUpdateCount > 0) {
    FChangedInUpdate = true;
    return;
  }
  if (FOnChange) FOnChange(this);
}

void TKXPathData::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Other = dynamic_cast<const TKXPathData*>(Source)) {
    FText = Other->FText;
    if (Other->FCommands == FCommands && Other->FPoints == FPoints) return;
    FCommands = Other->FCommands;
    FPoints = Other->FPoints;
    Changed();
    return;
  }
  inherited::Assign(Source);
}

// --- TKXPathData: building ---

void TKXPathData::Clear() {
  FText.reset();
  if (FCommands.empty()) return;
  FCommands.clear();
  FPoints.clear();
  Changed();
}

void TKXPathData::MoveTo(double X, double Y) {
  RequireFinite({X, Y}, "MoveTo");
  FText.reset();
  TFigureBuilder{FCommands, FPoints}.MoveTo({X, Y});
  Changed();
}

void TKXPathData::LineTo(double X, double Y) {
  RequireFinite({X, Y}, "LineTo");
  FText.reset();
  TFigureBuilder{FCommands, FPoints}.LineTo({X, Y});
  Changed();
}

void TKXPathData::CurveTo(double X1, double Y1, double X2, double Y2, double X, double Y) {
  RequireFinite({X1, Y1, X2, Y2, X, Y}, "CurveTo");
  FText.reset();
  TFigureBuilder{FCommands, FPoints}.CurveTo({X1, Y1}, {X2, Y2}, {X, Y});
  Changed();
}

void TKXPathData::ClosePath() {
  const size_t Before = FCommands.size();
  TFigureBuilder{FCommands, FPoints}.Close();
  if (FCommands.size() == Before) return;
  FText.reset();
  Changed();
}

void TKXPathData::Arc(double StartAngle, double EndAngle, double InnerRadius, double OuterRadius,
                      double Offset) {
  RequireFinite({StartAngle, EndAngle, InnerRadius, OuterRadius, Offset}, "Arc");
  double Inner = std::max(0.0, InnerRadius), Outer = std::max(0.0, OuterRadius);
  if (Inner > Outer) std::swap(Inner, Outer);
  const double Sweep = EndAngle - StartAngle;
  if (Outer == 0 || Sweep == 0) return;

  FText.reset();
  TFigureBuilder B{FCommands, FPoints};
  const TKXPathPoint Center{0, 0};
  const auto At = [](double R, double A) { return TKXPathPoint{R * std::cos(A), R * std::sin(A)}; };
  if (std::abs(Sweep) >= 360) {
    // The whole ring: the inner circle runs the other way, which the even-odd rule does
    // not need but a non-zero fill of the same data would.
    B.MoveTo(At(Outer, 0));
    B.ArcPieces(Center, Outer, Outer, 0, 0, 2 * Pi, nullptr);
    B.Close();
    if (Inner > 0) {
      B.MoveTo(At(Inner, 0));
      B.ArcPieces(Center, Inner, Inner, 0, 0, -2 * Pi, nullptr);
      B.Close();
    }
  } else {
    const double A0 = DegToRad(StartAngle + Offset), A1 = DegToRad(EndAngle + Offset);
    if (Inner == 0) {
      B.MoveTo(Center);
      B.LineTo(At(Outer, A0));
    } else {
      B.MoveTo(At(Outer, A0));
    }
    B.ArcPieces(Center, Outer, Outer, 0, A0, A1, nullptr);
    if (Inner > 0) {
      B.LineTo(At(Inner, A1));
      B.ArcPieces(Center, Inner, Inner, 0, A1, A0, nullptr);
    }
    B.Close();
  }
  Changed();
}

// --- TKXPathData: measuring ---

TKXPathData::TBoundsD TKXPathData::BoundsD() const {
  if (FPoints.empty()) return {0, 0, 0, 0};
  TBoundsD B{FPoints[0].X, FPoints[0].Y, FPoints[0].X, FPoints[0].Y};
  const auto Add = [&](const TKXPathPoint& P) {
    B.Left = std::min(B.Left, P.X);
    B.Right = std::max(B.Right, P.X);
    B.Top = std::min(B.Top, P.Y);
    B.Bottom = std::max(B.Bottom, P.Y);
  };
  TKXPathPoint Cur{};
  ForEachSegment([&](const TKXPathSegment& S) {
    if (S.Command == pcCurveTo) {
      const TKXPathPoint P[4] = {Cur, S.Points[0], S.Points[1], S.Points[2]};
      double T[2];
      for (int I = 0, N = CubicExtremes(P[0].X, P[1].X, P[2].X, P[3].X, T); I < N; ++I)
        Add(CubicAt(P, T[I]));
      for (int I = 0, N = CubicExtremes(P[0].Y, P[1].Y, P[2].Y, P[3].Y, T); I < N; ++I)
        Add(CubicAt(P, T[I]));
    }
    if (!S.Points.empty()) {
      Add(S.Points.back());
      Cur = S.Points.back();
    }
  });
  return B;
}

TRectF TKXPathData::GetBounds() const {
  const TBoundsD B = BoundsD();
  const auto F = [](double V) {
    return static_cast<float>(std::clamp(V, -double(FLT_MAX), double(FLT_MAX)));
  };
  return {F(B.Left), F(B.Top), F(B.Right), F(B.Bottom)};
}

bool TKXPathData::PointInPath(double X, double Y) const {
  if (std::isnan(X) || std::isnan(Y) || FCommands.empty()) return false;
  const TBoundsD B = BoundsD();
  if (!(X >= B.Left && X <= B.Right && Y >= B.Top && Y <= B.Bottom)) return false;
  const double Size = std::hypot(B.Right - B.Left, B.Bottom - B.Top);
  const double Tolerance = Size * 1e-4;
  bool Inside = false;
  for (const TKXPathPolygon& Polygon : Flatten(Tolerance > 0 ? Tolerance : DefaultTolerance)) {
    const std::vector<TKXPathPoint>& P = Polygon.Points;
    for (size_t I = 0, J = P.size() - 1; I < P.size(); J = I++) {
      // Half-open in Y, so a ray through a vertex counts it once.
      if ((P[I].Y > Y) != (P[J].Y > Y)) {
        const double CrossX = P[I].X + (Y - P[I].Y) * (P[J].X - P[I].X) / (P[J].Y - P[I].Y);
        if (X < CrossX) Inside = !Inside;
      }
    }
  }
  return Inside;
}

// --- TKXPathData: transforming ---

void TKXPathData::TransformAll(const TKXMatrix& M) {
  std::vector<TKXPathPoint> Points;
  Points.reserve(FPoints.size());
  for (const TKXPathPoint& P : FPoints)
    Points.push_back(M.Transform(P));
  if (Points == FPoints) return;
  FPoints.swap(Points);
  FText.reset();
  Changed();
}

void TKXPathData::Translate(double DX, double DY) {
  RequireFinite({DX, DY}, "Translate");
  TransformAll(CreateTranslateKXMatrix(DX, DY));
}

void TKXPathData::Scale(double SX, double SY) {
  RequireFinite({SX, SY}, "Scale");
  TransformAll(CreateScaleKXMatrix(SX, SY));
}

void TKXPathData::ApplyMatrix(const TKXMatrix& M) {
  RequireFinite({M.M11, M.M12, M.M21, M.M22, M.M31, M.M32}, "ApplyMatrix");
  TransformAll(M);
}

void TKXPathData::FitToRect(const TRectF& R) {
  RequireFinite({R.Left, R.Top, R.Right, R.Bottom}, "FitToRect");
  const TBoundsD B = BoundsD();
  const double BW = B.Right - B.Left, BH = B.Bottom - B.Top;
  if (!AllFinite({BW, BH})) return;
  const double RW = static_cast<double>(R.Right) - R.Left;
  const double RH = static_cast<double>(R.Bottom) - R.Top;
  // Each coordinate as a fraction of the bounds: the fraction is exactly 0 and 1 on the
  // sides of the bounds, so they land on R's sides without a rounding step. A matrix would
  // not guarantee that.
  const auto Map = [](double V, double Low, double Extent, double To, double ToExtent) {
    return Extent == 0 ? To + ToExtent / 2 : To + (V - Low) / Extent * ToExtent;
  };
  std::vector<TKXPathPoint> Points;
  Points.reserve(FPoints.size());
  for (const TKXPathPoint& P : FPoints)
    Points.push_back({Map(P.X, B.Left, BW, R.Left, RW), Map(P.Y, B.Top, BH, R.Top, RH)});
  if (Points == FPoints) return;
  FPoints.swap(Points);
  FText.reset();
  Changed();
}

// --- TKXPathData: walking ---

std::vector<TKXPathPolygon> TKXPathData::Flatten(double Tolerance) const {
  if (!(Tolerance > 0)) Tolerance = DefaultTolerance;
  std::vector<TKXPathPolygon> Result;
  TKXPathPolygon Current;
  const auto Flush = [&](bool Closed) {
    if (Current.Points.size() >= 2) {
      if (Closed && Current.Points.front() == Current.Points.back()) Current.Points.pop_back();
      Current.Closed = Closed;
      if (Current.Points.size() >= 2) Result.push_back(std::move(Current));
    }
    Current = {};
  };
  ForEachSegment([&](const TKXPathSegment& S) {
    switch (S.Command) {
    case pcMoveTo:
      Flush(false);
      Current.Points.push_back(S.Points[0]);
      break;
    case pcLineTo:
      Current.Points.push_back(S.Points[0]);
      break;
    case pcCurveTo: {
      const TKXPathPoint P[4] = {Current.Points.back(), S.Points[0], S.Points[1], S.Points[2]};
      const int N = CurvePieces(P, Tolerance);
      for (int I = 1; I < N; ++I)
        Current.Points.push_back(CubicAt(P, static_cast<double>(I) / N));
      Current.Points.push_back(P[3]);
      break;
    }
    case pcClose:
      Flush(true);
      break;
    }
  });
  Flush(false);
  return Result;
}

} // namespace kx
