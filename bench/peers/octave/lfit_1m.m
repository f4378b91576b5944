rand("twister", 5);
randn("twister", 7);
x = rand(1, 1000000);
y = 3 * x + 0.1 * randn(1, 1000000);
s = 0;
for k = 1:10
  [p, r] = polyfit(x, y, 1);
  s = s + r.normr / sqrt(r.df);
  [p, r] = polyfit(x, y, 2);
  s = s + r.normr / sqrt(r.df);
end
printf("%.10g\n", s);
