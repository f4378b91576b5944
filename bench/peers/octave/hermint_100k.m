x = [0 1 2 3 4 5 6 7];
y = [1 3 4 5 7 8 8 9];
s = 0;
p = pchip(x, y);
for k = 0:99999
  s = s + ppval(p, 0.00007 * k);
end
printf("%.10g\n", s);
