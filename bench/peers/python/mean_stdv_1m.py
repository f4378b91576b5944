import numpy as np

i = np.arange(1.0, 1001)
m = np.sin(np.outer(i, 0.7 * i))
s = 0.0
for k in range(1, 201):
    m[0, 0] = k
    s += m.std(ddof=1) + m.mean()
print("%.10g" % s)
