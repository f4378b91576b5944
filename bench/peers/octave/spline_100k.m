rand("twister", 5);
x = sort(rand(1, 100000));
y = rand(1, 100000);
q = rand(1, 100000);
s = 0;
for k = 1:10
  v = ppval(spline(x, y), q);
  s = s + v(1);
end
printf("%.10g\n", s);
