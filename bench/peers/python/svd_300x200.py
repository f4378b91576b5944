import numpy as np

x = np.arange(1.0, 301)
y = 0.7 * np.arange(1.0, 201)
a = np.sin(np.outer(x, y))
s = 0.0
for k in range(5):
    u, w, v = np.linalg.svd(a, full_matrices=False)
    s += w.max()
print("%.10g" % s)
