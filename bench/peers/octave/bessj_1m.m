x = 50*(1:500000)/500000;
printf("%.10g %.10g\n", sum(besselj(0, x)), sum(besselj(2.5, x)));
