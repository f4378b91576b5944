import numpy as np
from scipy.interpolate import CubicSpline

generator = np.random.default_rng(5)
x = np.sort(generator.random(100000))
y = generator.random(100000)
q = generator.random(100000)
s = 0.0
for k in range(10):
    s += CubicSpline(x, y)(q)[0]
print("%.10g" % s)
