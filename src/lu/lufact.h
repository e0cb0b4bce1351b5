// lufact.h -- lufact, the factors of a basis and their updates
//
// B = L * R_1^-1 * ... * R_k^-1 * U up to row order. A basis position is named by its pivot row: after a factorisation
// BasisHead[r] is the variable whose pivot lies in row r, so vectors over rows and over positions share one index
// and no solve maps anything.
//   L      unit lower triangular in pivot order, by columns (FTRAN) and by rows (BTRAN)
//   R_t    row etas of the Forrest-Tomlin update: x[row] += sum Val * x[Ind]
//   U      upper triangular in the order of Order; off-diagonals by columns and by rows, pivots in UDiag
// Invariants   U entry (i, r) stands once in column r and once in row i, with PosOfRow[i] < PosOfRow[r];
//              Order[PosOfRow[r]] == r; other cells of Order are -1; between solves Mark is all zero.
// States       empty      NeedBasis == 1: FactorBasis has to run
//              factored   NeedBasis == 0, NumUpdates >= 0: Ftran, Btran, UpdateFactor may be called
// Literature   Suhl and Suhl, "Computing sparse LU factorizations for large-scale linear programming bases", ORSA J.
//              Comp. 2, 1990; Forrest and Tomlin, "Updated triangular factors of the basis ...", Math. Prog. 2, 1972.
#pragma once
#include "lu/svec.h"

// Columns of the basis come from here: variable j < NumCols is column j, the others are unit columns.
struct BasisMatrix {
    int NumRows = 0;
    int NumCols = 0;
    const int *ColBeg = nullptr; // [NumCols + 1]
    const int *ColInd = nullptr;
    const double *ColVal = nullptr;
};

// Kind of solve, for the running averages that predict the density of its result.
enum SolveKind {
    SOLVE_COLUMN,
    SOLVE_ROW,
    SOLVE_FLIPS,
    SOLVE_NORM,
    SOLVE_COSTS,
    SOLVE_KINDS
};

template<class R> struct LuNode { // entry of the active matrix; dead once Idx[0] is -1
    R Val;
    int Idx[2];  // column (basis position), row
    int Next[2]; // next entry in the same column, in the same row; -1 at the end
};

// The active matrix during elimination. Axis 0: columns, axis 1: rows; a line is one of either. Count lists link the
// lines with the same number of entries.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the compiler's name in the implicit move of arrays
template<class R> struct LuActive {
    Array<LuNode<R>> Nodes; // size: nodes in use; room: limit of the fill
    int FreeNode = -1;      // chain of free nodes, through Next[0]
    int FreeNodes = 0;      // their number
    Array<int> Head[2];     // [m] first node of a line, -1 when none
    Array<int> Count[2];    // [m] live entries of a line, -1 once pivoted or never active
    Array<R> Max[2];        // [m] largest magnitude in a line, 0 when not known
    Array<int> First[2];    // [m + 1] by count: first line, -1 when none
    Array<int> Prev[2];     // [m] neighbours in the count list; Prev is -1 at the front
    Array<int> Next[2];     // [m]
    int Lines = 0;          // number of active rows (and columns)
    int64_t Entries = 0;    // live entries
    Array<R> Work;          // [m] zero between uses
    Array<int> Stamp;       // [m] stamp of the last line that had an entry here
    int StampNow = 0;       // current stamp
};

// The journal: a line of U, and a position whose column was replaced.
struct LuLine {
    int Axis, Index;   // 0 column, 1 row; its number
    int Beg, Len, Cap; // as in lufact
    int64_t At;        // of its entries in OldInd and OldVal
};
template<class R> struct LuReplaced {
    int Row, Place; // position; its place in the order
    R Diag;         // its pivot
};
struct LuFigures {
    int NumPos, NumEtas, NumUpdates;
    int64_t Etas, ColEntries, RowEntries, SpikeNnz; // sizes of the pools
    double Density[SOLVE_KINDS][2];
};

template<class R> struct lufact {
    int NumRows = 0;   // m
    int NeedBasis = 1; // a factorisation is needed before the next solve
    R DropTol = 0;     // magnitudes up to this count as zero
    int Growths = 0;   // number of times that a pool had to grow

    // Pivot order
    // [m + MaxMoves] row at each position of the order, -1 where an update moved it away
    Array<int> Order;
    Array<int> PosOfRow; // [m] position of each row in the order
    int NumPos = 0;      // positions in use
    int MaxMoves = 0;    // positions reserved for updates

    // L
    Array<int> LColBeg, LColLen; // [m] by pivot row
    Array<int> LInd;
    Array<R> LVal;
    Array<int> LColOrder;        // pivot rows of columns with entries, in pivot order
    Array<int> LRowBeg, LRowLen; // [m]
    Array<int> LRowInd;          // pivot rows
    Array<R> LRowVal;
    Array<int> LRowOrder; // rows of L with entries, in pivot order
    int64_t LNonzeros = 0;

    // U
    Array<R> UDiag;                       // [m]
    Array<int> UColBeg, UColLen, UColCap; // [m] by pivot row
    Array<int> UColInd;
    Array<R> UColVal;
    Array<int> URowBeg, URowLen, URowCap; // [m]
    Array<int> URowInd;
    Array<R> URowVal;
    int64_t UNonzeros = 0; // entries of U with diagonal after the last factorisation
    // Size of the U pools as a multiple of the entries needed; grows if updates fill them.
    double PoolFactor = 2;
    double EtaFactor = 2; // size of the eta pool as a multiple of m; likewise

    // Row etas and the state of the update
    Array<int> EtaRow; // [MaxMoves] pivot row
    Array<int> EtaBeg; // [MaxMoves + 1]
    Array<int> EtaInd;
    Array<R> EtaVal;
    Array<int> FirstEta; // [m] oldest eta that reads the row; INT32_MAX: none
    int NumEtas = 0;
    int NumUpdates = 0;
    int64_t SpikeNnz = 0; // entries of all spikes since the last factorisation
    // [m] spike: the column stored by Ftran after L and the etas, before U
    Array<int> SpikeInd;
    Array<R> SpikeVal;   // [m]
    int SpikeCount = -1; // its entries, -1 if there is none
    Array<int> PartInd;  // [m] the row stored by Btran after U^T, before the etas
    Array<R> PartVal;    // [m]
    int PartCount = -1;  // its entries, -1 if there is none
    int PartRow = -1;    // index of the unit vector that it was computed from

    // Journal of updates (lu_journal.cpp)
    int Journal = 0;               // updates are recorded
    LuFigures Begin;               // figures when it was begun
    Array<LuLine> OldLines;        // lines of U as they were before their first change
    Array<int> OldInd;             // their entries
    Array<R> OldVal;               // likewise
    Array<char> LineSaved[2];      // [m] column, row of U is in OldLines
    Array<LuReplaced<R>> Replaced; // positions whose column was replaced, in order

    // Running average of the share of nonzeros after the first and the second triangle.
    double Density[SOLVE_KINDS][2] = {};
    double WorkUnits = 0; // entries touched by solves, factors and updates

    // Scratch
    Array<char> Mark;                 // [m] zero between uses
    Array<R> Lanes;                   // [4 m] vectors side by side, zero between uses
    Array<int> Stack, StackPos, List; // [m]
    LuActive<R> Active;
    Array<int> URowTmpBeg,
        URowTmpLen; // [m] rows of U found by elimination, columns as basis positions
    Array<int> URowTmpInd;
    Array<R> URowTmpVal;
    Array<int> PatBeg, PatInd; // pattern of the basis by rows (positions of columns)
    Array<int> RowCount,
        RowSum; // [m] active entries of a row, and the xor of their positions
    Array<int> ColCount, ColSum;   // [m] the same for basis positions, xor of rows
    Array<int> RowOfPosn;          // [m] pivot row of a basis position, -1 when not pivoted
    int NumPivots = 0;             // pivots booked so far
    int NumTriangular = 0;         // those of the triangular stage
    Array<R> Dense;                // the dense tail, row by row
    Array<int> DenseRow, DenseCol; // rows and positions of the tail
    Array<int> HeadNew;            // [m]
};

template<class R>
[[nodiscard]] int lu_alloc(lufact<R> *lu, int num_rows, int max_updates, double drop_tol);

// Factors the basis of the variables in head[0..m-1] and puts head into pivot-row order.
// 0 done; k > 0: rank deficiency k, unpivoted rows and the basis positions of unpivoted columns in
// bad_rows[0..k-1], bad_cols[0..k-1] ([m] each; the caller repairs head and calls again; head is unchanged);
// -OUT_OF_MEMORY.
template<class R>
[[nodiscard]] int FactorBasis(lufact<R> *lu, const BasisMatrix *basis, int *head,
                              double markowitz_tol, int *bad_rows, int *bad_cols);

// Stages of FactorBasis. LU_NEED_ROOM, LU_NEED_DENSE: the pools, or the arrays of the dense tail, are too small; the
// driver enlarges them and starts again.
static constexpr int LU_NEED_ROOM = -1, LU_NEED_DENSE = -2;
template<class R>
int lu_singletons(lufact<R> *lu, const BasisMatrix *basis, const int *head);
template<class R>
int lu_markowitz(lufact<R> *lu, const BasisMatrix *basis, const int *head, R tol);
template<class R> int lu_dense_tail(lufact<R> *lu);
// Records a pivot: row and basis position leave the active matrix.
template<class R> inline void lu_pivot(lufact<R> *lu, int row, int position, R value)
{
    lu->PosOfRow.data[row] = lu->NumPivots;
    lu->Order.data[lu->NumPivots++] = row;
    lu->RowOfPosn.data[position] = row;
    lu->UDiag.data[row] = value;
}

// x := B^-1 x. With Keep::YES the spike for UpdateFactor is stored. x gets a list of its nonzeros (svec_tidy), unless
// Keep::VALUES says that no list is needed.
enum class Keep { NO, YES, VALUES };
template<class R> void Ftran(lufact<R> *lu, SVec<R> *x, SolveKind kind, Keep keep);
// Several FTRANs, with the same results as one after the other. Those with dense results share one pass over U.
template<class R> struct FtranTask {
    SVec<R> *X;
    SolveKind Kind;
    Keep Keeps; // YES in one of them at most
};
static constexpr int MAX_FTRANS = 3;
template<class R> void FtranJoint(lufact<R> *lu, const FtranTask<R> *tasks, int count);
// The parts of an FTRAN: through L and the etas; through U; whether the latter would be a sweep, starting at *last.
template<class R> void ftran_lower(lufact<R> *lu, const FtranTask<R> *task);
template<class R> void ftran_upper(lufact<R> *lu, const FtranTask<R> *task);
template<class R>
bool ftran_sweeps(const lufact<R> *lu, const FtranTask<R> *task, int *last);
// Updates a running average of the density of results.
static constexpr double LU_AVERAGE_DECAY = 0.9;
template<class R>
inline void lu_remember(const lufact<R> *lu, int nonzeros, double *density)
{
    const double share = static_cast<double>(nonzeros) / lu->NumRows;
    *density = LU_AVERAGE_DECAY * *density + (1 - LU_AVERAGE_DECAY) * share;
}
// x := B^-T x, with a list of its nonzeros. With Keep::YES x must be the unit vector of the position that UpdateFactor
// will replace.
template<class R> void Btran(lufact<R> *lu, SVec<R> *x, SolveKind kind, Keep keep);
// x := U^-T x alone.
template<class R> void lu_solve_upper_transposed(lufact<R> *lu, SVec<R> *x);

// Replaces the column of position r by the one whose spike Ftran stored. `pivot` is entry r of the result of that
// Ftran. 0; UPDATE_UNSTABLE or UPDATE_NO_ROOM: the factors are still those of the old basis; NeedBasis is set, as
// the caller goes on to the new one.
enum UpdateResult { UPDATE_DONE = 0, UPDATE_UNSTABLE = 6, UPDATE_NO_ROOM = 11 };
template<class R> int UpdateFactor(lufact<R> *lu, int r, R pivot);

// lu_journal.cpp. After lu_journal_begin (0 or OUT_OF_MEMORY) updates are recorded, until lu_journal_undo brings back
// the factors as they were then, or a factorisation ends the journal.
template<class R> [[nodiscard]] int lu_journal_begin(lufact<R> *lu);
template<class R> void lu_journal_undo(lufact<R> *lu);
template<class R> void lu_journal_end(lufact<R> *lu); // without undoing
// Records what the next UpdateFactor of position r may change. 0 or OUT_OF_MEMORY.
template<class R> [[nodiscard]] int lu_journal_record(lufact<R> *lu, int r);

// lu_append.cpp. The basis matrix grows by rows whose slacks are basic in them. `row` holds, by position, the entries
// of the new row in the basic columns; it is overwritten. lu_grow comes first, for all rows together: 0 or
// OUT_OF_MEMORY, when nothing is changed.
template<class R> [[nodiscard]] int lu_grow(lufact<R> *lu, int num_rows);
template<class R> [[nodiscard]] int lu_append_row(lufact<R> *lu, int i, SVec<R> *row);

// lu_delete.cpp. Rows and the positions of their slacks leave the basis matrix. number[i]: new number of row i, in the
// old order, or -1: deleted. False, and nothing is changed, if the factors of the rest do not stand apart.
template<class R> bool lu_delete_rows(lufact<R> *lu, const int *number);

// lu_negate.cpp. The column at position r of the basis matrix changes its sign.
template<class R> void lu_negate_column(lufact<R> *lu, int r);

// Sets the state after a factorisation: no updates.
template<class R> inline void lu_forget_updates(lufact<R> *lu)
{
    lu->NumPos = lu->NumRows;
    lu->NumEtas = lu->NumUpdates = 0;
    lu->EtaInd.size = lu->EtaVal.size = 0;
    lu->EtaBeg.data[0] = 0;
    for (int i = 0; i < lu->NumRows; i++) lu->FirstEta.data[i] = INT32_MAX;
    lu->SpikeNnz = 0;
    lu->SpikeCount = lu->PartCount = lu->PartRow = -1;
}
