import numpy as np

n = 400
i = np.arange(1.0, n + 1)
a = np.sin(np.outer(i, 0.7 * i)) + 5 * np.eye(n)
s = 0.0
for k in range(20):
    x = np.linalg.inv(a)
    s += x[0, 0] + x[199, 299] + x[-1, -1]
print("%.10g" % s)
