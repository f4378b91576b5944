import numpy as np
from scipy.linalg import solve_banded

n = 100000
ab = np.empty((3, n))
ab[0] = -1
ab[1] = 4
ab[2] = 1
r0 = 1 + np.arange(1.0, n + 1) / n
s = 0.0
for k in range(50):
    r = solve_banded((1, 1), ab, r0, check_finite=False)
    s += r[0] + r[49999] + r[-1]
print("%.10g" % s)
