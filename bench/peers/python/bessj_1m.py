import numpy as np
from scipy.special import jv

x = 50 * np.arange(1.0, 500001) / 500000
print("%.10g %.10g" % (jv(0, x).sum(), jv(2.5, x).sum()))
