#pragma once

// `eigen`, `svd` and `svsolve`.

namespace vexa {

// eigen(A, vals) and eigen(A, B, vals): A becomes the eigenvectors. Gives 1, after its message and
// with A untouched, when B is not positive definite; otherwise nothing.
double eigenBuiltin();
// svd(A, w, v): A becomes U. Gives the condition number, i# for a singular matrix.
double svdBuiltin();
// svsolve(U, w, V, b, x): x is the least-squares solution. Gives nothing.
double svsolveBuiltin();

}  // namespace vexa
