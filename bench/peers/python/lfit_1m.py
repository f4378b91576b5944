import numpy as np

generator = np.random.default_rng(5)
x = generator.random(1000000)
y = 3 * x + 0.1 * generator.standard_normal(1000000)
s = 0.0
for k in range(10):
    for degree in (1, 2):
        p, squares, *_ = np.polyfit(x, y, degree, full=True)
        s += np.sqrt(squares[0] / (x.size - degree - 1))
print("%.10g" % s)
