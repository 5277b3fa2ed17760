// The eigenvector that the fit of a general ellipse turns on.
#pragma once

#include "geometry/matrix.h"

namespace kapdf {

// Of the reduced 3 by 3 scatter matrix, under the constraint 4 p r - q^2 = 1: the coefficients (p, q, r) of x^2, xy
// and y^2, as a column. Zeros when there is no ellipse. `assumeZero`: the eigenvalue is 0 and is not searched for.
Matrix<3, 1> ConstrainedEigenvector(const Matrix<3, 3> &m, bool assumeZero);

// A vector, as a column, that a singular square matrix takes to zero, its last component 1; by elimination without
// exchanges. Zeros when the last diagonal value that is left does not count as zero: it is neither below 1e-8 nor
// below 1e-12 of the first one, in size.
Matrix<3, 1> NullVector(Matrix<3, 3> m);

}  // namespace kapdf
