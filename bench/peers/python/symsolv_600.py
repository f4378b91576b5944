import numpy as np
from scipy.linalg import solve

n = 600
i = np.arange(1.0, n + 1)
a = np.sin(np.outer(i, 0.7 * i)) + 60 * np.eye(n)
b = 1 + i / n
s = 0.0
for k in range(10):
    x = solve(a, b, assume_a="sym", check_finite=False)
    s += x[0] + x[-1]
print("%.10g" % s)
