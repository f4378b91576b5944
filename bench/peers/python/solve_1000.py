import numpy as np

n = 1000
i = np.arange(1.0, n + 1)
a = np.sin(np.outer(i, 0.7 * i)) + 5 * np.eye(n)
b = 1 + i / n
s = 0.0
for k in range(4):
    x = np.linalg.solve(a, b)
    s += x[0] + x[-1]
print("%.10g" % s)
